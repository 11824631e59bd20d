#pragma once

#include "host/cli/Options.h"
#include "host/draw/Drawing.h"
#include "host/report/Report.h"

#include <string>

namespace host {

/// The report as one page for a browser that needs nothing else, with its pictures (as SVG) or a sentence on
/// why they are missing, the settings, and the command line that makes it again.
std::string RenderHtml(const Options& options, const Report& report, const Drawing& drawing);

} // namespace host
