#pragma once

#include "host/report/AnalysisData.h"
#include "host/report/Report.h"
#include "host/run/RegressionAnalysis.h"

#include <string>
#include <vector>

namespace host {

/// A warning of the library as a sentence. That of a doubtful tau² has both values.
struct ShownWarning
{
    int code;
    std::string sentence;
};

std::vector<ShownWarning> WarningsOf(const AnalysisData& data);
std::vector<ShownWarning> WarningsOf(const RegressionRequest& request, const RegressionAnalysis& analysis);

/// Every warning with its code and a sentence.
ReportSections WarningsSection(const std::vector<ShownWarning>& warnings);

} // namespace host
