#pragma once

#include "host/RegressionAnalysis.h"
#include "host/ReportSource.h"

#include <string>
#include <vector>

namespace host {

/// A warning of the library in words; one of a doubtful tau² tells both values.
struct ShownWarning
{
    int code;
    std::string sentence;
};

std::vector<ShownWarning> WarningsOf(const ReportSource& source);
std::vector<ShownWarning> WarningsOf(const RegressionAnalysis& analysis);

} // namespace host
