#pragma once

#include "host/cli/Options.h"
#include "host/report/Report.h"

namespace host {

/// The preset with its settings, when there is one.
ReportSections PresetSection(Options options);

} // namespace host
