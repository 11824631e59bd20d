#pragma once

#include "meta_analysis/settings/MAModelSettings.h"
#include "meta_analysis/settings/MARegSettings.h"

namespace host {

/// What a regression of the studies shares with their pooling: estimator, adjustment, level, iteration. It
/// has an intercept, and neither variables nor effects yet.
MA_NAMESPACE::MARegSettings RegressionSettings(const MA_NAMESPACE::MAModelSettings& settings);

} // namespace host
