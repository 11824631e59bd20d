#pragma once

#include "host/cli/OptionDefinition.h"
#include "host/cli/Options.h"

namespace host {

/// The columns of the data of a command, and how its effect sizes are computed.
OptionDefinitions ColumnsOfData(Options& options, Command data);
OptionDefinitions EffectsOfData(Options& options, Command data);

/// The columns and effects that the command has: those of its data, or all as long as a regression does not
/// know which data it has.
OptionDefinitions ColumnsOf(Options& options);
OptionDefinitions EffectsOf(Options& options);

/// Whether the effect sizes of a regression are computed from raw data.
bool HasRawData(const Options& options);

/// Sets the outcome of a regression by the columns given, and stores its measure. Throws UnusableInput for
/// columns of different data, and for options that the data do not have.
void ResolveOutcome(Options& options);

} // namespace host
