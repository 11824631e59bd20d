#pragma once

#include "host/cli/Options.h"
#include "host/data/DataTable.h"

#include <string>
#include <vector>

namespace host {

/// What the studies report, such as events and totals: a column by the name that journals give it.
struct DataColumn
{
    std::string header;
    std::vector<double> values; ///< one a record
};

/// The columns of the outcome's data that the options name. Events and non-events come as events and totals.
std::vector<DataColumn> DataColumnsOf(const Options& options, const DataTable& table);

} // namespace host
