#pragma once

#include "meta_analysis/regression/MAPredictEffects.h"
#include "meta_analysis/regression/MARegBuild.h"

namespace MA_NAMESPACE {

/// Adds to a fitted model what a host reads beside coefficients and heterogeneity: hypotheses, tests of the
/// effects, variance inflation, predictions and, where the settings ask for them, cluster-robust tests,
/// deletion diagnostics and permutation tests, which fit by `fitModel`. False after an error, which is the
/// build's status then.
bool CompleteModel(const MARegTask& task, MARegFitFunction* fitModel, bool isRandom,
                   const MAPredictionChoice& prediction, MARegBuild& build);

} // namespace MA_NAMESPACE
