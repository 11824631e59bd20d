#pragma once

#include <optional>
#include <string>

namespace host {

/// The name of a column; none when the option is not given.
using ColumnName = std::optional<std::string>;

} // namespace host
