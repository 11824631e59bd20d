#pragma once

#include "host/ReportSource.h"

#include <vector>

namespace host {

// The sections of a report that show the pooled models. One without anything to show is empty.

/// The models of each group and of all studies, or the latter alone; of a cumulative analysis the last step
/// of each.
EffectRows PooledRows(const ReportSource& source);

ReportSection PooledEffect(const ReportSource& source);
ReportSection PredictionInterval(const ReportSource& source);
ReportSection Heterogeneity(const ReportSource& source);
ReportSection BetweenStudyVariance(const ReportSource& source);
ReportSection BetweenGroups(const ReportSource& source);

/// A section for each group, or one for all studies.
std::vector<ReportSection> CumulativeAnalysis(const ReportSource& source);

} // namespace host
