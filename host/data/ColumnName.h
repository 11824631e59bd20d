#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

/// The name of a column; none when the option is not given.
using ColumnName = std::optional<std::string>;

/// Whether two names are the same but for the blanks around them and for how letters with accents are
/// composed, which a user cannot see: Macs and keyboards differ in that.
bool IsSameName(std::string_view one, std::string_view other);

} // namespace host
