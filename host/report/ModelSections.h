#pragma once

#include "host/report/AnalysisData.h"

#include <vector>

namespace host {

// The sections of a report that show the pooled models. One without anything to show is empty.

/// The models of each group and of all studies, or the latter alone; of a cumulative analysis the last step
/// of each.
EffectRows PooledRows(const AnalysisData& data);

ReportSection PooledEffect(const AnalysisData& data);
ReportSection PredictionInterval(const AnalysisData& data);
ReportSection Heterogeneity(const AnalysisData& data);
ReportSection BetweenStudyVariance(const AnalysisData& data);
ReportSection BetweenGroups(const AnalysisData& data);

/// A section for each group, or one for all studies.
std::vector<ReportSection> CumulativeAnalysis(const AnalysisData& data);

} // namespace host
