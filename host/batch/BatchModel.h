#pragma once

#include "meta_analysis/bulk/MABulkPooling.h"
#include "meta_analysis/settings/MAModelSettings.h"

namespace host {

/// The model that the settings ask for.
MA_NAMESPACE::MABulkModel BatchModelOf(const MA_NAMESPACE::MAModelSettings& settings);

} // namespace host
