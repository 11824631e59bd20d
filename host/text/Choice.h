#pragma once

#include "host/text/UnusableInput.h"

#include "meta_analysis/settings/MAChoice.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace host {

// The library has some of the tables, what they are, and what checks them. Parts of a table are vectors of
// its rows.
using MA_NAMESPACE::HasEachEnumerator;
using MA_NAMESPACE::MAChoice;

/// The names, in the order of the table.
template <class Table>
std::string NamesOf(const Table& table)
{
    std::string names;
    for (const auto& row : table)
        names += fmt::format("{}{}", names.empty() ? "" : ", ", row.name);
    return names;
}

/// The value of a name. Throws UnusableInput with a sentence that lists the names.
template <class Table>
auto ValueOf(const Table& table, std::string_view name)
{
    for (const auto& row : table)
        if (row.name == name)
            return row.value;
    throw UnusableInput(fmt::format("'{}' is none of {}.", name, NamesOf(table)));
}

/// The row of a value. The static assertions at the tables prove that each enumerator has one.
template <class Row, std::size_t N>
const Row& RowOf(const std::array<Row, N>& table, decltype(Row::value) value)
{
    return *std::find_if(table.begin(), table.end(), [&](const Row& row) { return row.value == value; });
}

template <class Row, std::size_t N>
std::string NameOf(const std::array<Row, N>& table, decltype(Row::value) value)
{
    return std::string(RowOf(table, value).name);
}

} // namespace host
