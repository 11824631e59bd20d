#pragma once

#include "meta_analysis/inference/MAQuantiles.h"
#include "meta_analysis/pooling/MALikelihoodCurve.h"
#include "meta_analysis/pooling/MATau2Search.h"
#include "meta_analysis/settings/MAConst.h"

#include <optional>

namespace MA_NAMESPACE {

/// Bounds of tau², in the data's own unit; both missing (KXMV) where k - p < 1, and where a variance is not
/// positive and finite.
struct MATau2Bounds
{
    double lower;
    double upper;
};

/// The Q-profile interval with confidence 1 - alpha, which the quantiles have: the tau² at which the
/// generalized Q statistic is the quantile of alpha / 2 on either side of the chi-square distribution with k
/// - p degrees of freedom. Where the set lies below 0 both bounds are 0 by convention; it need not hold any
/// estimate. Viechtbauer (2007), Statistics in Medicine 26, 37-52.
MATau2Bounds QProfileInterval(MALikelihoodCurve& curve, MAQuantiles& quantiles);

/// The search of `QProfileInterval`, by values of Q that someone else computes.
class MAQProfileSearch
{
public:
    /// The bounds must outlive the object.
    MAQProfileSearch(const MACurveBounds& bounds, MAQuantiles& quantiles);

    /// Whether Q is wanted, and where.
    bool IsWaiting() const { return search_.has_value() && search_->IsWaiting(); }
    double Wanted() const { return search_->Wanted(); }
    void Take(const MAGeneralizedQ& q);
    /// Once nothing is wanted; `unit` is that of the curve.
    MATau2Bounds Found(double unit) const;

private:
    void SearchUpper();

    const MACurveBounds& bounds_;
    bool hasInterval_;
    bool isUpper_ = false;
    double upperTarget_ = 0.0;
    double lower_ = 0.0;
    std::optional<MAQRootSearch> search_;
};

/// The profile-likelihood interval with confidence 1 - alpha: the outermost tau² >= 0 at which the likelihood
/// of the curve, ML or REML, is below its global maximum by half the quantile of the chi-square distribution
/// with one degree of freedom. The set between may have gaps. `guess` is where the search of the maximum
/// looks first, in the curve's units.
/// Hardy and Thompson (1996), Statistics in Medicine 15, 619-629.
MATau2Bounds ProfileLikelihoodInterval(MALikelihoodCurve& curve, double guess, double alpha);

/// The interval of the given type for an estimator; both bounds missing for none, and for a profile
/// likelihood of an estimator that maximises none.
MATau2Bounds Tau2Interval(MALikelihoodCurve& curve, MAConst::TAU2INTERVAL type,
                          MAConst::TAU2ESTIMATOR estimator, double guess, MAQuantiles& quantiles);

} // namespace MA_NAMESPACE
