#pragma once

#include "host/report/Report.h"
#include "host/run/RecordSummary.h"

#include <string>
#include <vector>

namespace host {

/// What became of the records of the file at `dataPath`, and why some are no studies.
ReportSections RecordsSection(const std::string& dataPath, const RecordSummary& records,
                              const std::vector<std::string>& studyLabels);

} // namespace host
