#pragma once

#include "host/Analysis.h"
#include "host/DataTable.h"
#include "host/ExitStatus.h"
#include "host/Options.h"
#include "host/Request.h"

#include <string>

namespace host {

/// Throws UnusableInput when an output would replace the data.
void CheckOutputPlaces(const Options& options);

/// Writes what the options ask for: the report, the JSON; of an analysis that ended with an error, the JSON
/// and a sentence on standard error. Everything is rendered before the first byte is written. Throws
/// UnusableInput when a place cannot be written to.
ExitStatus WriteOutput(const Options& options, const DataTable& table, const Request& request,
                       const Analysis& analysis);

void WriteStandardOutput(const std::string& text);

} // namespace host
