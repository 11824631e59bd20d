#pragma once

#include "host/data/RecordLines.h"
#include "host/report/Report.h"
#include "host/run/RecordSummary.h"

#include <string>
#include <vector>

namespace host {

/// A table shows so many records; a sentence has the number of those beyond.
inline constexpr std::size_t MOST_SHOWN_RECORDS = 100;

/// Tells that a table ends before `count` records do; empty when it shows all.
std::string WordingOfRest(std::size_t count);

/// The records that are no studies, each with study, line of the file and reason, and the number of each
/// reason, as a flow chart of studies needs them. None when every record is a study.
ReportSections ExcludedRecordsSection(const RecordSummary& records,
                                      const std::vector<std::string>& studyLabels, const RecordLines& lines);

} // namespace host
