#pragma once

#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>
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

/// The names, in the order of the table.
template <class Row, std::size_t N>
std::string NamesOf(const std::array<Row, N>& table)
{
    std::string names;
    for (const Row& row : table)
        names += fmt::format("{}{}", names.empty() ? "" : ", ", row.name);
    return names;
}

/// The value of a name. Throws UnusableInput with a sentence that lists the names.
template <class Row, std::size_t N>
auto ValueOf(const std::array<Row, N>& table, std::string_view name)
{
    const auto* const found =
        std::find_if(table.begin(), table.end(), [&](const Row& row) { return row.name == name; });
    if (found == table.end())
        throw UnusableInput(fmt::format("'{}' is none of {}.", name, NamesOf(table)));
    return found->value;
}

/// The row of a value.
template <class Row, std::size_t N>
const Row& RowOf(const std::array<Row, N>& table, decltype(Row::value) value)
{
    const auto* const found =
        std::find_if(table.begin(), table.end(), [&](const Row& row) { return row.value == value; });
    if (found == table.end())
        throw std::out_of_range(fmt::format("The table of {} lacks a value.", NamesOf(table)));
    return *found;
}

template <class Row, std::size_t N>
std::string NameOf(const std::array<Row, N>& table, decltype(Row::value) value)
{
    return std::string(RowOf(table, value).name);
}

} // namespace host
