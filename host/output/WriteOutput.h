#pragma once

#include "host/cli/Options.h"
#include "host/output/ExitStatus.h"
#include "host/output/RunOutput.h"

namespace host {

/// Writes what the options ask for: the report to standard output, the JSON, the page and the pictures. After
/// an error of the run it writes the JSON alone, and after an error beyond the main analysis all of it; the
/// error goes to standard error. Everything is rendered before the first byte is written. What cannot be
/// drawn or written, or would replace the data or another output, is left out with a sentence on standard
/// error.
ExitStatus WriteOutput(const Options& options, const RunOutput& output);

} // namespace host
