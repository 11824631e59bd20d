#pragma once

#include "host/report/AnalysisData.h"
#include "host/report/RegressionData.h"
#include "host/report/Report.h"

#include <string>
#include <vector>

namespace host {

/// A sentence for each number that misleads, with the values that make it so; the most important first.
struct Cautions
{
    std::vector<std::string> sentences;
    std::vector<int> saidWarnings; ///< codes of warnings that say the same, one a sentence; 0 for none
};

Cautions CautionsOf(const AnalysisData& data);
Cautions CautionsOf(const RegressionData& data);

/// None without cautions.
ReportSections CautionsSection(const Cautions& cautions);

} // namespace host
