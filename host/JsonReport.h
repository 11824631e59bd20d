#pragma once

#include "host/Analysis.h"
#include "host/DataTable.h"
#include "host/Options.h"
#include "host/RecordUse.h"
#include "host/Warnings.h"

#include "meta_analysis/platform/common/KXStatus.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace host {

/// What a run has to tell, whichever the command.
struct JsonParts
{
    RecordUse records;
    KXStatus status;
    std::vector<ShownWarning> warnings;
    nlohmann::ordered_json results;
};

/// A run as one JSON object, for programs; also of one that ended with an error. Record numbers in it
/// count from 0. Doubles are written with as many digits as it takes to read back the same double.
std::string RenderJson(const Options& options, const JsonParts& parts);
std::string RenderJson(const Options& options, const DataTable& table, const Request& request,
                       const Analysis& analysis);

} // namespace host
