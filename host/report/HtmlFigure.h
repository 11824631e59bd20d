#pragma once

#include "host/draw/Drawing.h"

#include <string>

namespace host {

/// A drawn picture (SVG) as a figure of a page, with its number and description as caption. A forest that is
/// taller than paper is also there in slices for print, which are cut between rows and repeat the headings
/// and the axis.
std::string HtmlFigure(const DrawnPicture& drawn, int number);

} // namespace host
