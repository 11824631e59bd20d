#pragma once

#include "host/report/AnalysisData.h"

#include <vector>

namespace host {

// The sections of a report that show the analyses beyond the pooled models. One of an analysis that is not
// asked for is empty.

ReportSection Contrasts(const AnalysisData& data);

/// Adjusted estimate, and the imputed studies.
std::vector<ReportSection> TrimAndFill(const AnalysisData& data);

ReportSection SmallStudyTest(const AnalysisData& data);
/// What the picture does not show although it is asked for.
ReportSection FunnelPlot(const AnalysisData& data);
ReportSection BubblePlots(const AnalysisData& data);

} // namespace host
