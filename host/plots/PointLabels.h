#pragma once

#include "host/draw/Picture.h"

#include <string>
#include <vector>

namespace host {

/// A point of a picture's axes with a text that belongs beside it.
struct LabelledPoint
{
    Point point;
    std::string label;
    bool isNeeded = true; ///< else left out where each place beside the point is crossed by a line
};

/// Texts beside the points, in pixels counted from the left of the frame. Earlier labels come first: one that
/// would overlap a label before it or a dot of the picture, or leave the frame, gets another side of its
/// point, or is left out. Sides that no line of the picture's layers crosses come before others.
std::vector<PictureText> LabelsBeside(const std::vector<LabelledPoint>& points,
                                      const std::vector<Point>& dots, const Picture& picture);

} // namespace host
