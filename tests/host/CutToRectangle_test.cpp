#include "host/draw/CutToRectangle.h"
#include "support/Compare.h"

#include <cmath>
#include <vector>

using namespace host;

namespace {

/// The area inside the outline, by the shoelace formula.
double AreaOf(const std::vector<Point>& outline)
{
    double twice = 0;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const Point& next = outline[(i + 1) % outline.size()];
        twice += outline[i].x * next.y - next.x * outline[i].y;
    }
    return std::abs(twice) / 2;
}

TEST(CutToRectangle, KeepsWhatLiesInside)
{
    const struct
    {
        const char* what;
        std::vector<Point> outline;
        double area; ///< of the part inside [0, 4] x [0, 2]
    } cases[] = {
        {"inside", {{1, 1}, {2, 1}, {1, 2}}, 0.5},
        {"outside, across a corner", {{-3, 1}, {-1, 4}, {-3, 4}}, 0},
        {"around the rectangle", {{-9, -9}, {20, -9}, {20, 20}, {-9, 20}}, 8},
        {"a funnel's contour, wider than the axis", {{2, 2}, {-2, 0}, {6, 0}}, 6},
        {"a half plane", {{2, 0}, {4, 2}, {9, 9}, {-9, 9}, {-9, 0}}, 6},
        {"a band that leaves and comes back", {{0, 1}, {2, 3}, {4, 1}, {4, 0}, {2, 2}, {0, 0}}, 3},
        {"nothing", {}, 0},
    };
    const Rectangle rectangle = RectangleOf({"", 4, 0, {}}, {"", 0, 2, {}});
    for (const auto& one : cases) {
        const std::vector<Point> cut = CutToRectangle(one.outline, rectangle);
        EXPECT_TRUE(Close(AreaOf(cut), one.area, 8 * machineEpsilon)) << one.what;
        for (const Point& point : cut)
            EXPECT_TRUE(point.x >= 0 && point.x <= 4 && point.y >= 0 && point.y <= 2) << one.what;
    }
}

} // namespace
