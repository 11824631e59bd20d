#pragma once

#include "host/report/AnalysisData.h"
#include "host/run/RegressionAnalysis.h"

#include <string>
#include <vector>

namespace host {

/// A warning of the library in words; one of a doubtful tau² tells both values.
struct ShownWarning
{
    int code;
    std::string sentence;
};

std::vector<ShownWarning> WarningsOf(const AnalysisData& data);
std::vector<ShownWarning> WarningsOf(const RegressionAnalysis& analysis);

} // namespace host
