#pragma once

#include "host/data/DataTable.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// A column whose fields stand for categories: each distinct value is a level, numbered from 0 in ascending
/// order.
struct ColumnCoding
{
    std::vector<std::string> levels; ///< the texts of the levels, in order
    std::vector<double> codes;       ///< the level of each record; missing where the field is
};

/// Codes a column of texts or numbers. Numbers, when every field is one, are in numeric order and equal
/// however they are written (shown as where they stand first); else texts are in the order of their bytes.
ColumnCoding CodeColumn(const DataTable& table, std::size_t column);

} // namespace host
