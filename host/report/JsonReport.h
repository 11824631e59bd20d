#pragma once

#include "host/cli/Options.h"
#include "host/data/RecordLines.h"
#include "host/report/Warnings.h"
#include "host/run/RecordSummary.h"

#include "meta_analysis/platform/common/KXStatus.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace host {

/// The parts of the JSON that every command has.
struct JsonParts
{
    const std::vector<std::string>& studyLabels; ///< one a record
    const RecordLines& lines;
    RecordSummary records;
    KXStatus status;
    std::vector<ShownWarning> warnings;
    nlohmann::ordered_json results;
    std::vector<std::string> cautions = {}; ///< sentences where a number misleads
};

/// The run as one JSON object, also after an error. Record numbers count from 0. Doubles have as many digits
/// as are needed to read back the same double.
std::string RenderJson(const Options& options, const JsonParts& parts);

} // namespace host
