#pragma once

#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace host {

/// A value of an enumeration, with its name on the command line and in the JSON.
template <class Value>
struct Choice
{
    std::string_view name;
    Value value;
};

template <class Value>
Choice(const char*, Value) -> Choice<Value>;

// A table of choices is an array of rows with a `name` and a `value`: of Choice, or of a type that says more
// about each value.

/// Whether the enumeration names this value. The compiler writes a value without a name as a cast.
template <auto VALUE>
constexpr bool IsEnumerator()
{
    return std::string_view(__PRETTY_FUNCTION__).find("= (") == std::string_view::npos;
}

/// Whether a table has exactly one row for each enumerator, of an enumeration that counts from 0.
template <const auto& TABLE>
constexpr bool HasEachEnumerator()
{
    constexpr std::size_t count = TABLE.size();
    using Value = decltype(TABLE[0].value);
    std::array<bool, count> isFound{};
    for (const auto& row : TABLE)
        if (static_cast<std::size_t>(row.value) < count)
            isFound[static_cast<std::size_t>(row.value)] = true;
    return std::all_of(isFound.begin(), isFound.end(), [](bool found) { return found; }) &&
           IsEnumerator<static_cast<Value>(count - 1)>() && !IsEnumerator<static_cast<Value>(count)>();
}

// Parts of a table are vectors of its rows.

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
