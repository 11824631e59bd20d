#pragma once

#include "host/report/Report.h"
#include "host/text/NumberText.h"

#include <string>

namespace host {

/// "OR [95% CI]".
std::string IntervalHeader(const std::string& symbol, const std::string& level);

/// The estimates with their intervals at the level, or alone where none has an interval.
ReportColumn EstimateColumn(const std::string& symbol, const std::string& level, const Estimates& estimates);

} // namespace host
