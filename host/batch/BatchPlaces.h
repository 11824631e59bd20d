#pragma once

#include "host/cli/Options.h"

namespace host {

/// Throws UnusableInput when a file is given twice, or an output would replace a file of the data or another
/// output, has no folder, or is one.
void CheckBatchPlaces(const BatchOptions& batch);

} // namespace host
