#pragma once

#include "host/cli/Options.h"

#include <string>
#include <variant>

namespace host {

/// The text that the command line asks for instead of an analysis: help or version.
struct TextToShow
{
    std::string text;
};

/// Reads the command line into options, which are complete and checked, apart from the names of the columns.
/// Throws UnusableInput.
std::variant<Options, TextToShow> ParseCommandLine(int argc, const char* const* argv);

} // namespace host
