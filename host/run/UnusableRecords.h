#pragma once

#include "host/run/RegressionRequest.h"

#include <optional>
#include <string>

namespace host {

/// Why a meta-regression cannot use a record, in words that name the columns without a value; none when each
/// of its variables has a usable one. A record without an effect size of raw data is not asked for.
std::optional<std::string> ReasonOfUnusable(const RegressionRequest& request, const Record& record);

/// Whether that reason is a missing value.
bool HasMissing(const Record& record);

} // namespace host
