#pragma once

#include "meta_analysis/pooling/MALikelihoodCurve.h"
#include "meta_analysis/pooling/MAPrefixSums.h"
#include "meta_analysis/pooling/MATau2Steps.h"

#include <cstddef>

namespace MA_NAMESPACE {

/// The likelihood of the between-study variance of the first 1, 2, ... studies.
///
/// It is made of the sums of `MAPrefixSums`. Where one of the differences keeps less than a 32nd of what it
/// is taken from, the curve is not a number, `IsExact` becomes false, and the caller fits the studies
/// plainly. So a result has lost ten bits at most. The bound of the residual sum goes in powers of 2 times
/// the degrees of freedom, so that the searches of one prefix after the other look at the same t.
class MAPrefixCurve : public MALikelihoodCurve
{
public:
    /// Refers to the studies.
    MAPrefixCurve(const MAEffects& studies, MALikelihoodType type);

    /// The next study joins.
    void Append();
    /// Whether everything since `Append` had its digits.
    bool IsExact() const { return isExact_; }
    const MAPrefixSums& Sums() const { return sums_; }

    MALikelihoodTerms At(double t) override;
    MAGeneralizedQ QAt(double t) override;
    double LogLikelihood(double t) override;

    struct Fit
    {
        double mean; ///< from the origin, in the unit
        MATau2StepSums sums;
        double cubicForm; ///< y'PPPy
    };
    /// At t in the unit; the sums are those of `StepSumsAt`.
    Fit FitAt(double t);

private:
    double Kept(double difference, double from);

    MAPrefixSums sums_;
    MALikelihoodType type_;
    bool isExact_ = true;
    double squares_ = 0.0; ///< of effects, from the origin
};

} // namespace MA_NAMESPACE
