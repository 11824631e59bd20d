#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

/// Throws UnusableInput for a column that a file with the columns `names` lacks.
[[noreturn]] void FailForUnknownColumn(const std::string& fileName, std::string_view column,
                                       const std::vector<std::string>& names);

} // namespace host
