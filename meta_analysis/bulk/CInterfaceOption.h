#pragma once

#include "meta_analysis/settings/MAChoice.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <system_error>

namespace MA_NAMESPACE {

/// An option of the C interface: a field of a struct of options, with its name as text.
template <class Options>
struct COption
{
    std::string_view name;
    const char* values; ///< what it can have, as text: "reml, he, ..." or "a number between 0 and 1"
    bool (*hasValue)(const Options& options);               ///< whether the field has one of them
    bool (*store)(std::string_view text, Options& options); ///< false when the text is no value of its type
    std::size_t (*end)(const Options& options);             ///< where the field ends in the struct
};

/// The names of a table, "random, fixed", as a text that ends with 0.
template <const auto& TABLE>
inline constexpr auto joinedNames = [] {
    constexpr std::size_t size = [] {
        std::size_t sum = 0;
        for (const auto& row : TABLE)
            sum += row.name.size() + 2;
        return sum;
    }();
    std::array<char, size> text{};
    auto end = text.begin();
    for (const auto& row : TABLE) {
        for (const char character : std::string_view(end == text.begin() ? "" : ", "))
            *end++ = character;
        end = std::copy(row.name.begin(), row.name.end(), end);
    }
    return text;
}();

/// Independent of the locale, and without blanks or a sign +.
template <class Number>
bool ParseWhole(std::string_view text, Number& number)
{
    const char* const end = text.data() + text.size();
    const std::from_chars_result parsed = std::from_chars(text.data(), end, number);
    return parsed.ec == std::errc() && parsed.ptr == end;
}

// The rows of tables of options, by the member of the struct that they store.

template <class Member>
struct COptionMember;

template <class Struct, class Field>
struct COptionMember<Field Struct::*>
{
    using Options = Struct;
};

template <auto MEMBER>
using COptionOf = COption<typename COptionMember<decltype(MEMBER)>::Options>;

template <auto MEMBER, class Options>
std::size_t EndOf(const Options& options)
{
    return static_cast<std::size_t>(reinterpret_cast<const char*>(&(options.*MEMBER) + 1) -
                                    reinterpret_cast<const char*>(&options));
}

/// A field with one of the values of a table.
template <auto MEMBER, const auto& TABLE>
constexpr COptionOf<MEMBER> OneOf(std::string_view name)
{
    using Options = typename COptionMember<decltype(MEMBER)>::Options;
    return {name, joinedNames<TABLE>.data(),
            [](const Options& options) {
                return std::any_of(TABLE.begin(), TABLE.end(), [&](const auto& row) {
                    return static_cast<std::int32_t>(row.value) == options.*MEMBER;
                });
            },
            [](std::string_view text, Options& options) {
                const auto row = std::find_if(TABLE.begin(), TABLE.end(),
                                              [text](const auto& entry) { return entry.name == text; });
                if (row == TABLE.end())
                    return false;
                options.*MEMBER = static_cast<std::int32_t>(row->value);
                return true;
            },
            EndOf<MEMBER, Options>};
}

/// A field with a number of a range.
template <auto MEMBER, class Range>
constexpr COptionOf<MEMBER> NumberIn(std::string_view name)
{
    using Options = typename COptionMember<decltype(MEMBER)>::Options;
    return {name, Range::text, [](const Options& options) { return Range::Has(options.*MEMBER); },
            [](std::string_view text, Options& options) { return ParseWhole(text, options.*MEMBER); },
            EndOf<MEMBER, Options>};
}

struct CAnyNumber
{
    static constexpr const char* text = "a number";
    static bool Has(double value) { return std::isfinite(value); }
};

struct CNotNegative
{
    static constexpr const char* text = "a number that is not negative";
    static bool Has(double value) { return std::isfinite(value) && value >= 0.0; }
};

struct CPositive
{
    static constexpr const char* text = "a number above 0";
    static bool Has(double value) { return std::isfinite(value) && value > 0.0; }
};

struct CBetween0And1
{
    static constexpr const char* text = "a number between 0 and 1";
    static bool Has(double value) { return value > 0.0 && value < 1.0; }
};

struct CFrom0
{
    static constexpr const char* text = "a whole number from 0 on";
    static bool Has(std::int32_t value) { return value >= 0; }
};

struct CFrom1
{
    static constexpr const char* text = "a whole number from 1 on";
    static bool Has(std::int32_t value) { return value >= 1; }
};

} // namespace MA_NAMESPACE
