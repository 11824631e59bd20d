#pragma once

#include "host/cli/Options.h"

namespace host {

/// Refuses options on the command line that have no effect in this analysis, by one table of rules. What a
/// preset sets is not refused. Throws UnusableInput with a sentence that says what the option needs. Called
/// when all options are stored and the preset is applied.
void RefuseOptionsWithoutEffect(const Options& options);

} // namespace host
