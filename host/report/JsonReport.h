#pragma once

#include "host/cli/Options.h"
#include "host/data/DataTable.h"
#include "host/report/Warnings.h"
#include "host/run/Analysis.h"
#include "host/run/RecordSummary.h"

#include "meta_analysis/platform/common/KXStatus.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace host {

/// What a run has to tell, whichever the command.
struct JsonParts
{
    RecordSummary records;
    KXStatus status;
    std::vector<ShownWarning> warnings;
    nlohmann::ordered_json results;
};

/// A run as one JSON object, for programs; also of one that ended with an error. Record numbers in it
/// count from 0. Doubles are written with as many digits as it takes to read back the same double.
std::string RenderJson(const Options& options, const JsonParts& parts);
std::string RenderJson(const Options& options, const DataTable& table, const AnalysisRequest& request,
                       const Analysis& analysis);

} // namespace host
