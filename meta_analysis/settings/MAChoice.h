#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace MA_NAMESPACE {

/// A value of an enumeration, with its name in options, files and the C interface.
template <class Value>
struct MAChoice
{
    std::string_view name;
    Value value;
};

template <class Value>
MAChoice(const char*, Value) -> MAChoice<Value>;

// A table of choices is an array of rows with a `name` and a `value`: of MAChoice, or of a type that says
// more about each value.

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
    for (const bool found : isFound)
        if (!found)
            return false;
    return IsEnumerator<static_cast<Value>(count - 1)>() && !IsEnumerator<static_cast<Value>(count)>();
}

/// The name of a value that has a row.
template <class Table, class Value>
constexpr std::string_view NameIn(const Table& table, Value value)
{
    std::size_t i = 0;
    while (table[i].value != value)
        ++i;
    return table[i].name;
}

} // namespace MA_NAMESPACE
