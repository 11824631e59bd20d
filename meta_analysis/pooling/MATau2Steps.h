#pragma once

#include "meta_analysis/pooling/MATAU2ESTIMATIOR.h"

#include <cmath>

namespace MA_NAMESPACE {

/// What is not greater than 0, a NaN included, becomes 0.
inline double TruncateAtZero(double tau2)
{
    return tau2 > 0.0 ? tau2 : 0.0;
}

inline double Square(double x)
{
    return x * x;
}

/// What the iterative estimators take from the data at the current tau², with w = 1 / (v + tau²), residuals r
/// and leverages h.
struct MATAU2ESTIMATIOR::StepSums
{
    double unit = 1.0; ///< of the variances that the sums are counted in
    double count = 0.0;
    double w1 = 0.0;     ///< sum(w)
    double w2 = 0.0;     ///< sum(w²)
    double wr2 = 0.0;    ///< sum(w r²)
    double w2r2 = 0.0;   ///< sum(w² r²)
    double traceP = 0.0; ///< tr P = sum((1 - h) w), P the weighted residual projection; for REML
    double tracePP =
        0.0; ///< tr PP = sum((1 - 2h) w²) + sum(w² g), g the diagonal of the squared hat quantity

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
};

/// Scoring from the tau² that is there, which records how it ends. Ends at the iteration limit, at an error,
/// below the tolerance (that last small step is not taken), or when no halving makes the step usable, which a
/// NaN or infinite one never is.
template <class Sums>
void MATAU2ESTIMATIOR::Tau2IterEstimation(MAConst::TAU2ESTIMATOR type, Sums sumsAtTau2)
{
    for (evaluations_ = 0; evaluations_ < maxIter_;) {
        const StepSums sums = sumsAtTau2();
        const double step = StepFrom(sums, type) * sums.unit;
        ++evaluations_;
        convergence_ = MAConst::TAU2_STEP_BELOW_TOLERANCE;
        if (status_.IsError() || tolerance_ > std::abs(step) || !TakeStep(step))
            return;
    }
    convergence_ = MAConst::TAU2_ITERATION_LIMIT;
}

} // namespace MA_NAMESPACE
