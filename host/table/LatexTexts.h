#pragma once

#include <string>
#include <string_view>

namespace host {

/// A text in a cell of a LaTeX `tabular`, with all special characters escaped; also those of its table, and
/// those that fonts join to others. Signs, spaces and single Greek letters are commands, which every LaTeX
/// has; letters stay.
std::string LatexText(const std::string& text);

/// A text of numbers, with minus signs.
std::string LatexNumber(const std::string& text);

/// Comments that say what the preamble of a document needs for this table.
std::string LatexNeeds(std::string_view table);

} // namespace host
