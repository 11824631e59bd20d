#pragma once

#include "host/cli/OptionDefinition.h"

#include <string>

namespace host {

// Settings that go together, by one name. A preset is a table of options and their values; options that are
// given beside it win, and it leaves out those that the command does not have.

OptionDefinition PresetOption(Options& options);

/// Gives the options of the preset that are not given themselves their values.
void ApplyPreset(Options& options);

/// The preset, which must be given, with each of its options as resolved, as a sentence.
std::string PresetSentence(Options options);

} // namespace host
