#pragma once

#include "meta_analysis/pooling/MAPoolingChoice.h"
#include "meta_analysis/pooling/MATau2Estimate.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <cmath>

namespace MA_NAMESPACE {

/// What the iterative estimators take from the data at the current tau², with w = 1 / (v + tau²), residuals r
/// and leverages h.
struct MATau2StepSums
{
    bool isCancelled = false; ///< by the host
    double unit = 1.0;        ///< of the variances that the sums are counted in
    double count = 0.0;
    double w1 = 0.0;      ///< sum(w)
    double w2 = 0.0;      ///< sum(w²)
    double wr2 = 0.0;     ///< sum(w r²)
    double w2r2 = 0.0;    ///< sum(w² r²)
    double traceP = 0.0;  ///< tr P = sum((1 - h) w), with P = W - WX(X'WX)⁻X'W; taken by REML alone
    double tracePP = 0.0; ///< tr PP, twice the expected information of REML about tau²

    void Add(double weight, double residual)
    {
        const double weightedResidual = weight * residual;
        const double squaredWeight = weight * weight;
        count += 1.0;
        w1 += weight;
        w2 += squaredWeight;
        wr2 += weightedResidual * residual;
        w2r2 += weightedResidual * weightedResidual;
    }
    /// Of other data in the same unit.
    void Add(const MATau2StepSums& others)
    {
        count += others.count;
        w1 += others.w1;
        w2 += others.w2;
        wr2 += others.wr2;
        w2r2 += others.w2r2;
        traceP += others.traceP;
        tracePP += others.tracePP;
    }
};

/// The scoring step of tau², in the unit of the sums, for `rank` independent coefficients; NaN for an
/// estimator in closed form.
double ScoringStep(const MATau2StepSums& sums, MAConst::TAU2ESTIMATOR estimator, double rank);

/// Whether the step takes `traceP` and `tracePP`.
bool NeedsTraces(MAConst::TAU2ESTIMATOR estimator);

/// Moves tau² by the step, halved until tau² stays >= 0, at most one time more than the limit. False, tau²
/// unchanged and the reason recorded, when that does not help.
bool TakeStep(MATau2Estimate& estimate, double step, int maxStepHalving);

/// Scoring from `start`. Ends at the iteration limit, when the host cancels (ITERATOR_FAILED), below the
/// tolerance (that last small step is not taken), or when no halving makes the step usable, which a NaN or
/// infinite one never is.
template <class SumsAt>
MATau2Estimate ScoreTau2(double start, const MATau2Choice& choice, double rank, SumsAt sumsAt)
{
    MATau2Estimate estimate;
    estimate.tau2 = start;
    while (estimate.evaluations < choice.limits.maxIter) {
        const MATau2StepSums sums = sumsAt(estimate.tau2);
        const double step = ScoringStep(sums, choice.estimator, rank) * sums.unit;
        ++estimate.evaluations;
        estimate.convergence = MAConst::TAU2_STEP_BELOW_TOLERANCE;
        if (sums.isCancelled)
            estimate.status = KXStatus(MAStatusCode::ITERATOR_FAILED);
        if (sums.isCancelled || choice.limits.tolerance > std::abs(step) ||
            !TakeStep(estimate, step, choice.limits.maxStepHalving))
            return estimate;
    }
    estimate.convergence = MAConst::TAU2_ITERATION_LIMIT;
    return estimate;
}

} // namespace MA_NAMESPACE
