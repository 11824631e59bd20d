#pragma once

#include "meta_analysis/pooling/MAPooledCurve.h"

#include <span>
#include <vector>

namespace MA_NAMESPACE {

/// The likelihood of one between-study variance of groups of studies with a mean each: that of a
/// meta-regression with the groups as a factor. Its P is block diagonal, so that every term is the sum of
/// those of the groups; an evaluation takes one division a study, and no design matrix.
class MAGroupedCurve : public MALikelihoodCurve
{
public:
    /// The effects are the caller's and must outlive the object.
    MAGroupedCurve(std::span<const MAEffects> groups, MAConst::TAU2ESTIMATOR estimator);

    MALikelihoodTerms At(double t) override;
    MAGeneralizedQ QAt(double t) override;
    double LogLikelihood(double t) override;

private:
    std::vector<MAPooledCurve> groups_;
};

} // namespace MA_NAMESPACE
