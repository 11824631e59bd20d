#pragma once

#include "host/cli/Options.h"
#include "host/output/ExitStatus.h"

namespace host {

/// Runs the command `batch`: reads the files, pools each set of studies, writes a line for each. Throws
/// UnusableInput.
ExitStatus RunBatch(const Options& options);

} // namespace host
