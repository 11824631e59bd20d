#include "host/draw/CutToRectangle.h"

#include <algorithm>
#include <cstddef>

namespace host {

namespace {

/// A side of a rectangle, and the direction in which the rectangle lies from it.
struct Side
{
    double Point::*coordinate;
    double at;
    bool keepsLess;

    bool Keeps(const Point& point) const
    {
        return keepsLess ? point.*coordinate <= at : point.*coordinate >= at;
    }

    /// The point where the line between two points on different sides crosses this side.
    Point Crossing(const Point& one, const Point& other) const
    {
        const double share = (at - one.*coordinate) / (other.*coordinate - one.*coordinate);
        Point crossing = {one.x + share * (other.x - one.x), one.y + share * (other.y - one.y)};
        crossing.*coordinate = at;
        return crossing;
    }
};

std::vector<Point> CutAt(const Side& side, const std::vector<Point>& outline)
{
    std::vector<Point> cut;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const Point& last = outline[i == 0 ? outline.size() - 1 : i - 1];
        if (side.Keeps(last) != side.Keeps(outline[i]))
            cut.push_back(side.Crossing(last, outline[i]));
        if (side.Keeps(outline[i]))
            cut.push_back(outline[i]);
    }
    return cut;
}

} // namespace

Rectangle RectangleOf(const Axis& x, const Axis& y)
{
    return {{std::min(x.first, x.last), std::min(y.first, y.last)},
            {std::max(x.first, x.last), std::max(y.first, y.last)}};
}

std::vector<Point> CutToRectangle(std::vector<Point> outline, const Rectangle& rectangle)
{
    for (const Side& side :
         {Side{&Point::x, rectangle.least.x, false}, Side{&Point::x, rectangle.most.x, true},
          Side{&Point::y, rectangle.least.y, false}, Side{&Point::y, rectangle.most.y, true}})
        outline = CutAt(side, outline);
    return outline;
}

} // namespace host
