#pragma once

#include "host/text/AsciiCase.h"
#include "host/text/NearestName.h"
#include "host/text/UnusableInput.h"

#include "meta_analysis/settings/MAChoice.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

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

/// The names as a list, for completion and suggestions.
template <class Table>
std::vector<std::string> ListOfNames(const Table& table)
{
    std::vector<std::string> names;
    names.reserve(std::size(table));
    for (const auto& row : table)
        names.emplace_back(row.name);
    return names;
}

/// The well-known abbreviation that a table may have for a row; empty without.
template <class Row>
std::string_view AbbreviationOf(const Row& row)
{
    if constexpr (requires { row.abbreviation; })
        return row.abbreviation;
    return {};
}

/// "; OR is odds-ratio; RR is risk-ratio", for a help text.
template <class Table>
std::string AbbreviationsOf(const Table& table)
{
    std::string text;
    for (const auto& row : table)
        if (!AbbreviationOf(row).empty())
            text += fmt::format("; {} is {}", AbbreviationOf(row), row.name);
    return text;
}

/// Whether a text is the name of a row or its abbreviation, in any case.
template <class Row>
bool IsNameOf(const Row& row, std::string_view text)
{
    return EqualInAnyCase(row.name, text) || (!text.empty() && EqualInAnyCase(AbbreviationOf(row), text));
}

template <class Table>
bool HasName(const Table& table, std::string_view text)
{
    return std::any_of(table.begin(), table.end(), [&](const auto& row) { return IsNameOf(row, text); });
}

/// The value of a name or abbreviation, in any case. Throws UnusableInput with a sentence that lists the
/// names.
template <class Table>
auto ValueOf(const Table& table, std::string_view name)
{
    for (const auto& row : table)
        if (IsNameOf(row, name))
            return row.value;
    throw UnusableInput(
        fmt::format("'{}' is none of {}.{}", name, NamesOf(table), DidYouMean(name, ListOfNames(table))));
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
