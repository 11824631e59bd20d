#pragma once

#include "host/report/Report.h"
#include "host/run/StudyNotes.h"

#include <string>
#include <vector>

namespace host {

/// Which studies had their values converted from what they report, and how. None without such studies.
/// `labels` has one entry a record.
ReportSections ConvertedStudies(const StudyNotes& notes, const std::vector<std::string>& labels);

} // namespace host
