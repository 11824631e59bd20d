#pragma once

#include "host/cli/Options.h"
#include "host/report/Report.h"

namespace host {

/// The preset with its settings, when there is one.
ReportSections PresetSection(Options options);

/// How options were read that can be read in two ways, when there are such.
ReportSections OptionNotesSection(const Options& options);

} // namespace host
