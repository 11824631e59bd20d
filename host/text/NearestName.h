#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The name that `text` is likely to be meant for: the nearest in any case, when it takes few steps from one
/// to the other, or else the only one that begins with `text`. A step inserts, removes or replaces a
/// character, or swaps two neighbours (Damerau, Communications of the ACM 1964). A third of the text's length
/// may differ, and one character at least.
std::optional<std::string> NearestName(std::string_view text, const std::vector<std::string>& names);

/// " Did you mean 'NAME'?", each name behind `prefix`, or nothing when no name is near.
std::string DidYouMean(std::string_view text, const std::vector<std::string>& names,
                       std::string_view prefix = {});

} // namespace host
