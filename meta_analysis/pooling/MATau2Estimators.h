#pragma once

#include "meta_analysis/inference/MAEffects.h"
#include "meta_analysis/pooling/MAPooledCurve.h"
#include "meta_analysis/pooling/MAPoolingChoice.h"
#include "meta_analysis/pooling/MATau2Estimate.h"
#include "meta_analysis/pooling/MATau2Steps.h"

namespace MA_NAMESPACE {

/// The between-study variance of k studies. Errors: TAU2_FAILED for an estimator outside the enumeration,
/// LENGTH_MISMATCH. O(k) an iteration, without allocation. `MATAU2ESTIMATIOR` describes the estimators.
MATau2Estimate EstimateTau2(const MAEffects& studies, const MATau2Choice& choice);
/// The same, by the curve of the studies if a search takes one.
MATau2Estimate EstimateTau2(const MAEffects& studies, const MATau2Choice& choice, MACurveOnDemand& curve);

/// The sums that a scoring step takes from the residuals about the mean at tau².
MATau2StepSums StepSumsAt(const MAEffects& studies, double tau2);

} // namespace MA_NAMESPACE
