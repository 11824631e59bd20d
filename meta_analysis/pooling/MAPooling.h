#pragma once

#include "meta_analysis/inference/MAEffects.h"
#include "meta_analysis/pooling/MAPooledModel.h"
#include "meta_analysis/pooling/MAPoolingChoice.h"

namespace MA_NAMESPACE {

/// Pools by inverse variance, w = 1 / v. Error: LENGTH_MISMATCH.
MAPooledModel PoolFixedEffect(const MAEffects& studies, const MAFixedEffectChoice& choice);

/// Pools with w = 1 / (v + tau²). Errors as `PoolFixedEffect`, and TAU2_FAILED for an unknown estimator.
/// Allocates nothing, but for an interval of tau² by profile likelihood.
MAPooledModel PoolRandomEffects(const MAEffects& studies, const MARandomEffectsChoice& choice);

/// The check of `MARandomEffectsChoice::checksTau2`, for a model that was pooled without it.
bool IsTau2Doubtful(const MAEffects& studies, const MARandomEffectsChoice& choice,
                    const MAPooledModel& model);

} // namespace MA_NAMESPACE
