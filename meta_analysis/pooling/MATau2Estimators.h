#pragma once

#include "meta_analysis/inference/MAEffects.h"
#include "meta_analysis/pooling/MAPoolingChoice.h"
#include "meta_analysis/pooling/MATau2Estimate.h"

namespace MA_NAMESPACE {

/// The between-study variance of k studies. Errors: TAU2_FAILED for an estimator outside the enumeration,
/// LENGTH_MISMATCH. O(k) an iteration, without allocation. `MATAU2ESTIMATIOR` describes the estimators.
MATau2Estimate EstimateTau2(const MAEffects& studies, const MATau2Choice& choice);

} // namespace MA_NAMESPACE
