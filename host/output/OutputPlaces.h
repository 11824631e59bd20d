#pragma once

#include "host/cli/Options.h"

#include <string>

namespace host {

/// Throws UnusableInput when an output certainly cannot be written: it would replace the data or another
/// output, has no folder, or should be a folder and is a file. Runs before the analysis, so that a misspelt
/// place costs no work.
void CheckOutputPlaces(const Options& options);

bool WritesJsonToStandardOutput(const Options& options);

/// What the run uses the path for, apart from its pictures: "the data file"; empty for nothing.
std::string OtherUseOf(const std::string& path, const Options& options);

} // namespace host
