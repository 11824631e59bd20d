#include "host/plots/PointLabels.h"

#include "host/text/PlainText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <utility>

namespace host {

namespace {

constexpr double GAP = 7;        // from the point to its label, in pixels
constexpr double LONGEST = 18;   // of a label, in units of the font's size
constexpr std::size_t MOST = 60; // labels, beyond which none could be read
constexpr double HALF_LINE = 0.55 * FONT_SIZE;

struct Box
{
    double left;
    double right;
    double top;
    double bottom;

    bool Overlaps(const Box& other) const
    {
        return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
    }
};

double ShareOf(const Axis& axis, double value)
{
    return (value - axis.first) / (axis.last - axis.first);
}

/// The place of a point, from the left of the frame and the top of the picture.
Point PlaceOf(const Picture& picture, const Point& point)
{
    return {ShareOf(picture.x, point.x) * picture.frame.width,
            picture.frame.top + (1 - ShareOf(picture.y, point.y)) * picture.frame.height};
}

Box BoxAt(double left, double middle, double width)
{
    return {left, left + width, middle - HALF_LINE, middle + HALF_LINE};
}

/// About a dot.
Box BoxAbout(const Point& place)
{
    constexpr double radius = 4;
    return {place.x - radius, place.x + radius, place.y - radius, place.y + radius};
}

/// Whether a part of the line between two places lies in the box, by cutting it to the box (Liang and Barsky
/// 1984, ACM Transactions on Graphics 3, 1-22).
bool Crosses(const Point& first, const Point& last, const Box& box)
{
    const double dx = last.x - first.x;
    const double dy = last.y - first.y;
    const std::pair<double, double> sides[] = {{-dx, first.x - box.left},
                                               {dx, box.right - first.x},
                                               {-dy, first.y - box.top},
                                               {dy, box.bottom - first.y}};
    double from = 0;
    double to = 1;
    for (const auto& [step, room] : sides) {
        if (step == 0 && room < 0)
            return false;
        if (step < 0)
            from = std::max(from, room / step);
        else if (step > 0)
            to = std::min(to, room / step);
    }
    return from <= to;
}

bool IsLine(const Layer& layer)
{
    return layer.kind == Layer::Kind::LINE || layer.kind == Layer::Kind::DASHED_LINE ||
           layer.kind == Layer::Kind::DOTTED_LINE;
}

/// What labels keep clear of.
struct Obstacles
{
    Box frame;
    std::vector<Box> boxes;
    std::vector<std::vector<Point>> lines;

    bool LeaveRoomFor(const Box& box) const
    {
        const bool isInside = box.left >= frame.left && box.right <= frame.right && box.top >= frame.top &&
                              box.bottom <= frame.bottom;
        return isInside && std::none_of(boxes.begin(), boxes.end(),
                                        [&](const Box& other) { return box.Overlaps(other); });
    }

    bool Cross(const Box& box) const
    {
        return std::any_of(lines.begin(), lines.end(), [&](const std::vector<Point>& line) {
            return std::adjacent_find(line.begin(), line.end(), [&](const Point& first, const Point& last) {
                       return Crosses(first, last, box);
                   }) != line.end();
        });
    }
};

Obstacles ObstaclesIn(const Picture& picture, const std::vector<Point>& dots)
{
    constexpr double above = 5; // a label may stand out of the frame
    Obstacles obstacles = {
        {0, picture.frame.width, picture.frame.top - above, picture.frame.top + picture.frame.height},
        {},
        {}};
    for (const Point& dot : dots)
        obstacles.boxes.push_back(BoxAbout(PlaceOf(picture, dot)));
    for (const Layer& layer : picture.layers)
        for (std::size_t i = 0; IsLine(layer) && i < layer.pieces.size(); ++i) {
            std::vector<Point> line;
            for (const Point& point : layer.pieces[i])
                line.push_back(PlaceOf(picture, point));
            obstacles.lines.push_back(std::move(line));
        }
    return obstacles;
}

/// The places of a label, the best first: right of the point, left, above, below, and the corners between.
std::array<Box, 8> BoxesBeside(const Point& place, double width)
{
    const double right = place.x + GAP;
    const double left = place.x - GAP - width;
    const double middle = place.x - width / 2;
    return {BoxAt(right, place.y, width),
            BoxAt(left, place.y, width),
            BoxAt(middle, place.y - HALF_LINE - GAP, width),
            BoxAt(middle, place.y + HALF_LINE + GAP, width),
            BoxAt(right, place.y - HALF_LINE, width),
            BoxAt(left, place.y - HALF_LINE, width),
            BoxAt(right, place.y + HALF_LINE, width),
            BoxAt(left, place.y + HALF_LINE, width)};
}

/// The first place that is free, and is crossed by no line unless there is none of those.
std::optional<Box> FreeBox(const Point& place, double width, const Obstacles& obstacles, bool isNeeded)
{
    std::optional<Box> crossed;
    for (const Box& box : BoxesBeside(place, width)) {
        if (!obstacles.LeaveRoomFor(box))
            continue;
        if (!obstacles.Cross(box))
            return box;
        if (isNeeded && !crossed)
            crossed = box;
    }
    return crossed;
}

} // namespace

std::vector<PictureText> LabelsBeside(const std::vector<LabelledPoint>& points,
                                      const std::vector<Point>& dots, const Picture& picture)
{
    Obstacles obstacles = ObstaclesIn(picture, dots);
    std::vector<PictureText> texts;
    for (std::size_t i = 0; i < std::min(points.size(), MOST); ++i) {
        const std::string label = ShortenedText(points[i].label, LONGEST);
        const std::optional<Box> box = FreeBox(PlaceOf(picture, points[i].point),
                                               TextWidth(label) * FONT_SIZE, obstacles, points[i].isNeeded);
        if (!box)
            continue;
        obstacles.boxes.push_back(*box);
        const bool isLeft = box->right < PlaceOf(picture, points[i].point).x;
        texts.push_back({label, isLeft ? box->right : box->left, (box->top + box->bottom) / 2,
                         isLeft ? PictureText::Align::RIGHT : PictureText::Align::LEFT});
    }
    return texts;
}

} // namespace host
