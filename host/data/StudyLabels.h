#pragma once

#include "host/data/ColumnName.h"
#include "host/data/DataTable.h"

#include <string>
#include <vector>

namespace host {

/// The texts of the column, one a record; without a column the numbers of the records, from 1. Throws
/// UnusableInput when the table has no such column.
std::vector<std::string> StudyLabels(const ColumnName& column, const DataTable& table);

} // namespace host
