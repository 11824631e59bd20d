#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/settings/MAModelSettings.h"
#include "meta_analysis/settings/MARegSettings.h"

namespace MA_NAMESPACE {

// The one place where settings of one kind are taken over into settings of the other.

/// What a meta-regression shares with the pooling of the same studies: estimator and search of tau², the
/// Knapp-Hartung adjustment, confidence level, tolerance and iteration limits. The regression has an
/// intercept, and neither variables nor effects yet. An estimator outside the enumeration leaves the
/// regression's default.
META_ANALYSIS_EXPORT MARegSettings RegressionSettingsOf(const MAModelSettings& settings);

/// The same for a regression-based small-study test: also the use of an intercept, the multiplicative
/// dispersion and the variables of the 2x2 table.
META_ANALYSIS_EXPORT MARegSettings SmallStudyTestSettingsOf(const MAModelSettings& settings);

/// How `settings` estimate and test, for a regression on other variables: intercept, tolerances, limits,
/// confidence level, cancel object, dispersion, tau², adjustment and test distribution. Variables, effects
/// and listeners are left out.
META_ANALYSIS_EXPORT MARegSettings ComputationSettingsOf(const MARegSettings& settings);

/// Adds a covariate and the effect that consists of it. False when the settings refuse the variable or
/// memory runs out.
META_ANALYSIS_EXPORT bool AddCovariateEffect(MARegSettings& settings, int variable);

} // namespace MA_NAMESPACE
