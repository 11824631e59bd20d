#pragma once

#include "host/cli/Options.h"

#include <string>
#include <variant>

namespace host {

/// A text that the command line asks for instead of an analysis: help or version.
struct TextToShow
{
    std::string text;
};

/// The command line as options, complete and checked but for the columns. Throws UnusableInput.
std::variant<Options, TextToShow> ParseCommandLine(int argc, const char* const* argv);

} // namespace host
