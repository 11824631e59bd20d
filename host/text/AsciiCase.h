#pragma once

#include <algorithm>
#include <string_view>

namespace host {

constexpr char UpperCase(char c) noexcept
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// Whether two texts are equal but for the case of ASCII letters.
constexpr bool EqualInAnyCase(std::string_view one, std::string_view other) noexcept
{
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char a, char b) { return UpperCase(a) == UpperCase(b); });
}

} // namespace host
