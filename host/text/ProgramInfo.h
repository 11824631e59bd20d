#pragma once

namespace host {

inline constexpr const char* PROGRAM_NAME = "meta-analysis";
inline constexpr const char* PROGRAM_VERSION = META_ANALYSIS_VERSION; ///< the project's, set by the build

} // namespace host
