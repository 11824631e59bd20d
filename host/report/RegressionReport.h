#pragma once

#include "host/cli/Options.h"
#include "host/report/Report.h"
#include "host/run/RegressionAnalysis.h"
#include "host/run/RegressionRequest.h"

namespace host {

/// The report of a meta-regression that ended without error.
Report MakeRegressionReport(const Options& options, const RegressionRequest& request,
                            const RegressionAnalysis& analysis);

} // namespace host
