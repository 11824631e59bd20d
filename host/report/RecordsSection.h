#pragma once

#include "host/report/Report.h"
#include "host/run/RecordSummary.h"

#include <string>

namespace host {

/// What became of the records of the file at `dataPath`.
ReportSections RecordsSection(const std::string& dataPath, const RecordSummary& records);

} // namespace host
