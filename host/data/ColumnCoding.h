#pragma once

#include "host/data/DataTable.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// A column of categories: each distinct value is a level. Levels are numbered from 0 in ascending order.
struct ColumnCoding
{
    std::vector<std::string> levels; ///< the texts of the levels, in order
    std::vector<double> codes;       ///< the level of each record; missing where the field is
};

/// Codes a column of texts or numbers. When every field is a number, levels are in numeric order, and equal
/// numbers share a level however they are written; its text is that of the first record. Otherwise levels
/// are in the order of their texts' bytes.
ColumnCoding CodeColumn(const DataTable& table, std::size_t column);

} // namespace host
