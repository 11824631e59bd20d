#pragma once

#include "meta_analysis/pooling/MATau2Estimate.h"
#include "meta_analysis/regression/design/MADesignMatrix.h"

namespace MA_NAMESPACE {

/// tau² that the predictors leave, by the estimator of the settings; 0 for a code that is no estimator.
/// Errors: `ONE_USABLE_STUDY` (Sidik-Jonkman), `TOO_FEW_ROWS`, `ITERATOR_FAILED`.
MATau2Estimate EstimateResidualTau2(const MADesignMatrix& design);

/// tau² of the same studies without predictors, by the same estimator.
MATau2Estimate EstimateTau2WithoutPredictors(const MADesignMatrix& design);

} // namespace MA_NAMESPACE
