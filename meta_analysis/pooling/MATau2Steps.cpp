#include "meta_analysis/pooling/MATau2Steps.h"

#include "meta_analysis/settings/MAEstimators.h"

#include <limits>

namespace MA_NAMESPACE {

/// ML: the score of the profile likelihood over its information. REML: (y'PPy - tr P) / tr PP with
/// P = W - WX(X'WX)⁻X'W. EB: Morris (1983), Journal of the American Statistical Association 78, 47-55.
double ScoringStep(const MATau2StepSums& sums, MAConst::TAU2ESTIMATOR estimator, double rank)
{
    switch (MethodOf(estimator)) {
    case MATau2Method::FullLikelihood:
        return (sums.w2r2 - sums.w1) / sums.w2;
    case MATau2Method::RestrictedLikelihood:
        return sums.tracePP == 0.0 ? 0.0 : (sums.w2r2 - sums.traceP) / sums.tracePP;
    case MATau2Method::QRoot:
        return (sums.count / (sums.count - rank) * sums.wr2 - sums.count) / sums.w1;
    case MATau2Method::ClosedForm:
        break;
    }
    return std::numeric_limits<double>::quiet_NaN();
}

bool NeedsTraces(MAConst::TAU2ESTIMATOR estimator)
{
    return MethodOf(estimator) == MATau2Method::RestrictedLikelihood;
}

bool TakeStep(MATau2Estimate& estimate, double step, int maxStepHalving)
{
    double fraction = step;
    for (int halvings = 0; std::isfinite(fraction); ++halvings) {
        const double candidate = estimate.tau2 + fraction;
        if (candidate >= 0.0) {
            estimate.tau2 = candidate;
            return true;
        }
        if (halvings > maxStepHalving) {
            estimate.convergence = MAConst::TAU2_STEP_HALVING_FAILED;
            return false;
        }
        fraction *= 0.5;
    }
    estimate.convergence = MAConst::TAU2_STEP_NOT_FINITE;
    return false;
}

} // namespace MA_NAMESPACE
