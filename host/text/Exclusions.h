#pragma once

#include "host/text/Choice.h"

#include "meta_analysis/settings/MAExclusionTexts.h"

namespace host {

/// Why a record is no study, in words.
inline constexpr const auto& EXCLUSIONS = MA_NAMESPACE::exclusionTexts;

} // namespace host
