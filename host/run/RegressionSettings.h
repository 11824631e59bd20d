#pragma once

#include "meta_analysis/settings/MAModelSettings.h"
#include "meta_analysis/settings/MARegSettings.h"

namespace host {

/// The settings of a regression of the studies, as far as it shares them with their pooling: estimator,
/// adjustment, level, iteration. They have an intercept, and neither variables nor effects.
MA_NAMESPACE::MARegSettings RegressionSettings(const MA_NAMESPACE::MAModelSettings& settings);

/// The same with what the small-study test of all studies has: intercept, dispersion and counts.
MA_NAMESPACE::MARegSettings SmallStudyTestSettings(const MA_NAMESPACE::MAModelSettings& settings);

} // namespace host
