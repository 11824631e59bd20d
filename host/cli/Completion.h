#pragma once

#include "host/cli/OptionDefinition.h"

#include <string>
#include <vector>

namespace host {

/// A command with all that it has to be completed by.
struct CommandOptions
{
    std::string name;
    std::string help;
    bool takesManyFiles = false;
    OptionDefinitions options;
};

/// The completion of the program's command line as a script for the shell: "bash" or "zsh". It completes
/// commands, options, their choices, files and folders, and names of columns by the header line of the data
/// file. Throws UnusableInput for another shell.
std::string CompletionFor(const std::string& shell, const std::vector<CommandOptions>& commands);

} // namespace host
