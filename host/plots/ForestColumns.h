#pragma once

#include "host/draw/Picture.h"
#include "host/plots/ForestDrawing.h"

#include <string>
#include <vector>

namespace host {

/// What stands below each other in a forest plot: texts, or the frame with the intervals.
struct ForestColumn
{
    std::vector<std::string> texts = {}; ///< one a row; none for the frame
    std::string header = {};             ///< in lines
    std::string groupHeader = {};        ///< over this one and neighbours with the same
    PictureText::Align align = PictureText::Align::RIGHT;
    double longest = 0; ///< a wider text is wrapped; in units of the font's size, 0 for never
    bool isFrame = false;
};

/// The columns from left to right, as the style has them.
std::vector<ForestColumn> ForestColumns(const ForestScale& scale, const Forest& forest);

} // namespace host
