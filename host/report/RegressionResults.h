#pragma once

#include "host/run/RegressionAnalysis.h"
#include "host/run/RegressionRequest.h"

#include <nlohmann/json.hpp>

namespace host {

/// What every public getter of the output statistics returns, under the getter's name without its leading
/// `Get`, and `Score` with the seven values of each record (null for an unusable one). In `RedundancyInfo`,
/// as in the getter's set, true stands for a parameter that is estimated, false for a redundant one.
nlohmann::ordered_json ResultsOf(const RegressionRequest& request, const RegressionAnalysis& analysis);

} // namespace host
