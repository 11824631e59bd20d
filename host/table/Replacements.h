#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace host {

struct Replacement
{
    std::string_view text;
    std::string_view by;
};

/// The text with the replacements, from left to right; the first that fits at a place wins.
template <std::size_t N>
std::string Replaced(std::string_view text, const std::array<Replacement, N>& replacements)
{
    std::string replaced;
    while (!text.empty()) {
        const auto found = std::find_if(replacements.begin(), replacements.end(),
                                        [&](const Replacement& one) { return text.starts_with(one.text); });
        replaced += found == replacements.end() ? text.substr(0, 1) : found->by;
        text.remove_prefix(found == replacements.end() ? 1 : found->text.size());
    }
    return replaced;
}

} // namespace host
