#pragma once

#include <nlohmann/json.hpp>

#include <functional>
#include <string>
#include <vector>

namespace host {

/// An option of a command, declared once: the command line and its help are defined by it, and the settings
/// of the JSON are written by it.
struct OptionDefinition
{
    enum class Need
    {
        NONE,
        REQUIRED,
        THIS_OR_NEXT ///< exactly one of this option and those declared behind it, up to one without this
    };

    std::string name;           ///< without the dashes; in the JSON too
    std::string shortName = {}; ///< a letter, without the dash; empty for most
    std::string argument = {};  ///< what its argument is, in upper case; empty for a flag
    std::string help;
    std::string heading = {};              ///< of its group in the help
    std::vector<std::string> choices = {}; ///< the words that it takes, for completion; empty for any text
    Need need = Need::NONE;
    bool isRepeatable = false;

    /// Stores an argument's text (of a flag: nothing). Throws UnusableInput that does not name the option.
    std::function<void(const std::string&)> store;
    /// The value as resolved; null when it is not given and has no default.
    std::function<nlohmann::ordered_json()> value;
};

using OptionDefinitions = std::vector<OptionDefinition>;

} // namespace host
