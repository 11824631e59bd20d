#pragma once

#include "host/cli/Options.h"

#include <string>

namespace host {

/// Throws UnusableInput when an output certainly cannot be written: it would replace the data or another
/// output, has no folder, or should be a folder and is a file. Runs before the analysis, so that a misspelt
/// place costs no work.
void CheckOutputPlaces(const Options& options);

/// Whether the paths lead to one file, whether it exists or not.
bool IsSameFile(const std::string& one, const std::string& other);

/// Throws UnusableInput, which names the option, when there is no folder for the file.
void RequireFolderOf(const char* option, const std::string& path);

/// What the run uses the path for, apart from its pictures: "the data file"; empty for nothing.
std::string OtherUseOf(const std::string& path, const Options& options);

} // namespace host
