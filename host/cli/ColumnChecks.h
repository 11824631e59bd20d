#pragma once

#include "host/cli/Options.h"

namespace host {

/// Refuses columns that are not enough for a study, that do not go together, or that name the same quantity.
/// Throws UnusableInput.
void CheckColumns(const Options& options);

} // namespace host
