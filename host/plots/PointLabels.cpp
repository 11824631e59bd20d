#include "host/plots/PointLabels.h"

#include "host/text/PlainText.h"

#include <algorithm>
#include <optional>

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

/// The first place of the label that is free: right of the point, left, above, below.
std::optional<Box> FreeBox(const Point& place, double width, const std::vector<Box>& taken, const Box& frame)
{
    const Box boxes[] = {BoxAt(place.x + GAP, place.y, width), BoxAt(place.x - GAP - width, place.y, width),
                         BoxAt(place.x - width / 2, place.y - HALF_LINE - GAP, width),
                         BoxAt(place.x - width / 2, place.y + HALF_LINE + GAP, width)};
    for (const Box& box : boxes) {
        const bool isInside = box.left >= frame.left && box.right <= frame.right && box.top >= frame.top &&
                              box.bottom <= frame.bottom;
        if (isInside &&
            std::none_of(taken.begin(), taken.end(), [&](const Box& other) { return box.Overlaps(other); }))
            return box;
    }
    return std::nullopt;
}

} // namespace

std::vector<PictureText> LabelsBeside(const std::vector<LabelledPoint>& points,
                                      const std::vector<Point>& dots, const Picture& picture)
{
    const Box frame = {0, picture.frame.width, picture.frame.top, picture.frame.top + picture.frame.height};
    std::vector<Box> taken;
    taken.reserve(dots.size() + points.size());
    for (const Point& dot : dots)
        taken.push_back(BoxAbout(PlaceOf(picture, dot)));
    std::vector<PictureText> texts;
    for (std::size_t i = 0; i < std::min(points.size(), MOST); ++i) {
        const std::string label = ShortenedText(points[i].label, LONGEST);
        const std::optional<Box> box =
            FreeBox(PlaceOf(picture, points[i].point), TextWidth(label) * FONT_SIZE, taken, frame);
        if (!box)
            continue;
        taken.push_back(*box);
        const bool isLeft = box->right < PlaceOf(picture, points[i].point).x;
        texts.push_back({label, isLeft ? box->right : box->left, (box->top + box->bottom) / 2,
                         isLeft ? PictureText::Align::RIGHT : PictureText::Align::LEFT});
    }
    return texts;
}

} // namespace host
