#pragma once

#include "host/cli/OptionDefinition.h"

#include <set>
#include <string>
#include <vector>

namespace host {

// A preset is a name for settings that go together: a table of options and their values. Options that are
// given beside it win. A preset leaves out the options that the command does not have.

/// The names of all presets.
std::vector<std::string> PresetNames();

/// The same as a text, for the help.
std::string NamesOfPresets();

/// The name, if there is such a preset. Throws UnusableInput otherwise.
std::string KnownPreset(const std::string& name);

/// Stores the preset's values of the options, but not of those in `given`.
void ApplyPreset(const std::string& name, const OptionDefinitions& definitions,
                 const std::set<std::string>& given);

/// The preset with each of its options as resolved, as a sentence.
std::string PresetSentence(const std::string& name, const OptionDefinitions& definitions);

} // namespace host
