#pragma once

#include "host/Analysis.h"
#include "host/DataTable.h"
#include "host/Options.h"

#include <string>

namespace host {

/// An analysis as one JSON object, for programs; also of one that ended with an error. Record numbers in it
/// count from 0. Doubles are written with as many digits as it takes to read back the same double.
std::string RenderJson(const Options& options, const DataTable& table, const Analysis& analysis);

} // namespace host
