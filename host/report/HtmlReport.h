#pragma once

#include "host/cli/Options.h"
#include "host/draw/Drawing.h"
#include "host/report/Report.h"

#include <string>

namespace host {

/// The report as one self-contained page: with its pictures (as SVG) or a sentence that says why they are
/// missing, with the settings, and with the command line that makes the page again.
std::string RenderHtml(const Options& options, const Report& report, const Drawing& drawing);

} // namespace host
