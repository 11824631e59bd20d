#pragma once

#include <string>

namespace host {

/// The text, escaped for use between tags and in quoted attributes.
std::string HtmlEscaped(const std::string& text);

/// A text between tags, escaped, in which the names of options stay on one line.
std::string HtmlText(const std::string& text);

/// Numbers between tags, with minus signs as in pictures. A hyphen alone is a missing value.
std::string HtmlNumber(const std::string& text);

} // namespace host
