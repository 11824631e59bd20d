#pragma once

#include "host/report/AnalysisData.h"
#include "host/report/RegressionData.h"
#include "host/report/Report.h"

#include <string>
#include <vector>

namespace host {

/// A sentence for each number of the analysis that misleads, with the values that make it so; in the order of
/// the rules.
std::vector<std::string> CautionsOf(const AnalysisData& data);
std::vector<std::string> CautionsOf(const RegressionData& data);

/// None without cautions.
ReportSections CautionsSection(const std::vector<std::string>& cautions);

} // namespace host
