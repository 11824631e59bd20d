#pragma once

#include "host/Options.h"
#include "host/RegressionAnalysis.h"
#include "host/RegressionRequest.h"
#include "host/Report.h"

namespace host {

/// The report of a meta-regression that ended without error.
Report MakeRegressionReport(const Options& options, const RegressionRequest& request,
                            const RegressionAnalysis& analysis);

} // namespace host
