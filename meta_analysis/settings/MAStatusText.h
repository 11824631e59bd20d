#pragma once

#include "meta_analysis/platform/common/Export.h"

namespace MA_NAMESPACE {

/// The meaning of a status code as a sentence, which is static; a null pointer for a number that is no code.
META_ANALYSIS_EXPORT const char* StatusText(int code) noexcept;

} // namespace MA_NAMESPACE
