#pragma once

#include "meta_analysis/platform/common/Record.h"
#include "meta_analysis/regression/MAPredictedEffect.h"
#include "meta_analysis/regression/MARegFit.h"

#include <vector>

namespace MA_NAMESPACE {

/// What predictions of a fitted model need beside the fit.
struct MAPredictionChoice
{
    double scale;         ///< of the covariance; missing: there is none
    double criticalValue; ///< 0 for Student's t without degrees of freedom
    double tau2;          ///< missing for fixed effects
};

/// Prediction at a row of the design; all missing unless the rows of the fit determine it.
MAPredictedEffect PredictEffectAt(const MARegFit& fit, const MAPredictionChoice& choice,
                                  const std::vector<double>& predictors);

/// Prediction at the predictors of a record.
MAPredictedEffect PredictEffectOf(const MARegFit& fit, const MAPredictionChoice& choice,
                                  const Record& values);

} // namespace MA_NAMESPACE
