#pragma once

#include "host/report/AnalysisData.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// How many tables had the zero-cell correction for the studies' own effects; empty when none had.
std::string WordingOfStudyCorrection(const AnalysisData& data);

/// How many tables were pooled with it in each pooled effect, where tables are pooled and some have a zero
/// cell; else empty.
std::string WordingOfPooledCorrection(const AnalysisData& data);

/// Appends to the steps of a group, or of all studies, how many tables each pools with the correction, unless
/// none does.
void AppendCorrectionOfSteps(std::vector<ReportColumn>& table, const AnalysisData& data, std::size_t group);

} // namespace host
