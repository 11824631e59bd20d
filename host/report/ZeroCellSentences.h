#pragma once

#include "host/report/AnalysisData.h"
#include "host/report/Report.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// How many studies have the zero-cell correction for their own effects.
int CorrectedStudies(const AnalysisData& data);

/// How many tables, or studies with other counts, have the zero-cell correction for the studies' own effects;
/// empty when none has.
std::string WordingOfStudyCorrection(const AnalysisData& data);

/// How many corrected tables each pooled effect has; empty unless tables are pooled and some have a zero
/// cell.
std::string WordingOfPooledCorrection(const AnalysisData& data);

/// For each group of a cumulative analysis, or for all studies, a column with the number of corrected tables
/// in each step. It has no cells when no step has one. Empty unless counts can be corrected.
std::vector<ReportColumn> CorrectionsOfSteps(const AnalysisData& data);

} // namespace host
