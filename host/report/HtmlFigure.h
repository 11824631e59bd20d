#pragma once

#include "host/draw/Drawing.h"

#include <string>

namespace host {

/// A drawn picture (SVG) as a figure of a page, with its number and description as caption. A forest that is
/// taller than paper stands there in slices as well, for print: cut between rows, each below the headings.
std::string HtmlFigure(const DrawnPicture& drawn, int number);

/// Text as it may stand between tags and in quoted attributes.
std::string HtmlEscaped(const std::string& text);

} // namespace host
