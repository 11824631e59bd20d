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
};

/// Texts beside the points, in pixels counted from the left of the frame. Earlier labels come first: one that
/// would overlap a label before it or a dot of the picture, or leave the frame, gets another side of its
/// point, or is left out.
std::vector<PictureText> LabelsBeside(const std::vector<LabelledPoint>& points,
                                      const std::vector<Point>& dots, const Picture& picture);

} // namespace host
