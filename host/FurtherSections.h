#pragma once

#include "host/ReportSource.h"

#include <vector>

namespace host {

// The sections of a report that show the analyses beyond the pooled models. One of an analysis that is not
// asked for is empty.

ReportSection Contrasts(const ReportSource& source);

/// Adjusted estimate, and the imputed studies.
std::vector<ReportSection> TrimAndFill(const ReportSource& source);

ReportSection SmallStudyTest(const ReportSource& source);
/// What the picture does not show although it is asked for.
ReportSection FunnelPlot(const ReportSource& source);
ReportSection BubblePlots(const ReportSource& source);

} // namespace host
