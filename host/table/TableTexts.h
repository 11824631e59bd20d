#pragma once

#include <string>

namespace host {

/// A text as a quoted field. One that a spreadsheet would run as a formula begins with an apostrophe, as
/// OWASP ("CSV injection") advises; a number, such as -0.5, is no formula and stays.
std::string CsvField(const std::string& text);

/// A text in a cell of a Markdown table, with what Markdown and HTML read otherwise escaped.
std::string MarkdownText(const std::string& text);

} // namespace host
