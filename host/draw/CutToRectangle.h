#pragma once

#include "host/draw/Picture.h"

#include <vector>

namespace host {

/// A rectangle in the coordinates of a picture's axes, with its sides upright and level.
struct Rectangle
{
    Point least;
    Point most;
};

Rectangle RectangleOf(const Axis& x, const Axis& y);

/// The outline of what lies both inside the closed outline and inside the rectangle, after Sutherland and
/// Hodgman (1974), Commun. ACM 17, 32-42. Disconnected parts stay joined along the rectangle's sides. The
/// result is empty when nothing lies inside both. Coordinates must be finite.
std::vector<Point> CutToRectangle(std::vector<Point> outline, const Rectangle& rectangle);

} // namespace host
