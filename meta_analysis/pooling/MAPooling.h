#pragma once

#include "meta_analysis/inference/MAEffects.h"
#include "meta_analysis/pooling/MAPooledModel.h"
#include "meta_analysis/pooling/MAPoolingChoice.h"
#include "meta_analysis/pooling/MATau2Estimate.h"

#include <cstddef>

namespace MA_NAMESPACE {

/// Pools by inverse variance, w = 1 / v. Error: LENGTH_MISMATCH.
MAPooledModel PoolFixedEffect(const MAEffects& studies, const MAFixedEffectChoice& choice);

/// Pools with w = 1 / (v + tau²). Errors as `PoolFixedEffect`, and TAU2_FAILED for an unknown estimator.
/// Allocates nothing, but for an interval of tau² by profile likelihood.
MAPooledModel PoolRandomEffects(const MAEffects& studies, const MARandomEffectsChoice& choice);

/// Sums over two studies or more, of which their random-effects model is made.
struct MARandomEffectsSums
{
    std::size_t count;
    MATau2Estimate tau2;
    double mean;
    double weightSum;   ///< at tau²
    double residualSum; ///< sum(w (y - mean)²) at tau²
    double q;           ///< Cochran's
    double fixedTrace;  ///< sum(w) - sum(w²) / sum(w) with w = 1 / v
};

/// The model of the sums, without a prediction and without what `MATau2Results` has of the likelihood.
MAPooledModel RandomEffectsModel(const MARandomEffectsSums& sums, const MARandomEffectsChoice& choice);

/// The check of `MARandomEffectsChoice::checksTau2`, for a model that was pooled without it.
bool IsTau2Doubtful(const MAEffects& studies, const MARandomEffectsChoice& choice,
                    const MAPooledModel& model);

} // namespace MA_NAMESPACE
