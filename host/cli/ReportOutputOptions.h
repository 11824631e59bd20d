#pragma once

#include "host/cli/OptionDefinition.h"
#include "host/cli/Options.h"

namespace host {

/// The options of the report and of the table of studies. They refer to `report`, which must outlive them.
OptionDefinitions ReportOutputOptions(ReportOptions& report);

/// Refuses two outputs for standard output, a table of no known kind, and options that leave nothing to
/// write. Throws UnusableInput.
void CheckReportOutput(const Options& options);

/// Whether the report goes to standard output.
bool WritesReportToStandardOutput(const Options& options);

} // namespace host
