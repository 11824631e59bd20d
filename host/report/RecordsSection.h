#pragma once

#include "host/data/RecordLines.h"
#include "host/report/Report.h"
#include "host/run/RecordSummary.h"

#include <string>
#include <vector>

namespace host {

/// What became of the records of the file at `dataPath`, and which of them are excluded.
ReportSections RecordsSection(const std::string& dataPath, const RecordSummary& records,
                              const std::vector<std::string>& studyLabels, const RecordLines& lines);

} // namespace host
