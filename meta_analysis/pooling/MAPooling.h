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

/// Whether tau² of an iterative estimator is off the one that the global search proves by more than a
/// hundredth of the latter plus the typical within-study variance, or the search proves none. Takes one
/// search, and none after a global one that ended with a proof.
bool IsTau2Doubtful(const MAEffects& studies, const MARandomEffectsChoice& choice,
                    const MAPooledModel& model);

} // namespace MA_NAMESPACE
