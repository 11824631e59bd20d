#pragma once

#include "host/cli/Options.h"
#include "host/report/Report.h"
#include "host/run/Analysis.h"
#include "host/run/AnalysisRequest.h"

namespace host {

/// The report of an analysis that ended without error.
Report MakeAnalysisReport(const Options& options, const AnalysisRequest& request, const Analysis& analysis);

} // namespace host
