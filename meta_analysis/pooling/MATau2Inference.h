#pragma once

#include "meta_analysis/inference/MAQuantiles.h"
#include "meta_analysis/pooling/MALikelihoodCurve.h"
#include "meta_analysis/pooling/MATau2Results.h"
#include "meta_analysis/pooling/MATau2Search.h"

namespace MA_NAMESPACE {

/// What is asked about an estimate of the between-study variance.
struct MATau2Question
{
    MAConst::TAU2ESTIMATOR estimator;
    MAConst::TAU2INTERVAL interval;
    int rank; ///< number of coefficients that are not redundant; 1, the mean, without predictors
    bool wantsLikelihood = true;
};

/// Adds the likelihood of the curve at tau² with its criteria, and the interval, to the results. Each stays
/// missing where the estimator has none, or none is asked for. The interval has the confidence of the
/// quantiles.
void InferTau2(MALikelihoodCurve& curve, double tau2, const MATau2Question& question, MAQuantiles& quantiles,
               MATau2Results& results);

/// Whether an iterative estimate of tau² is off the one that the global search proves by more than a
/// hundredth of the latter plus the typical within-study variance, or the search proves none. Takes one
/// search, and none after a global one that ended with a proof. `typicalVariance` is called only when it can
/// matter.
template <class TypicalVariance>
bool IsTau2Doubtful(MALikelihoodCurve& curve, MAConst::TAU2ESTIMATOR estimator, double tau2,
                    MAConst::TAU2CONVERGENCE convergence, TypicalVariance typicalVariance)
{
    if (!IsIterative(estimator) || convergence == MAConst::TAU2_GLOBAL_OPTIMUM)
        return false;
    const double unit = curve.Unit();
    const double proved = unit * SolveTau2(curve, estimator, tau2 / unit, comparingPrecision).t;
    return IsTau2Off(tau2, proved, 0.0) && IsTau2Off(tau2, proved, typicalVariance());
}

} // namespace MA_NAMESPACE
