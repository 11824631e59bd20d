#include "host/plots/ScatterPlot.h"

#include "host/plots/PlotAxes.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace host {

namespace {

constexpr double SPACE_LEFT = 54;  // of the axis title and the ticks
constexpr double SPACE_BELOW = 58; // likewise, and of the numbers
constexpr double HEADING_HEIGHT = 26;
constexpr double LEGEND_SAMPLE = 64;  // with the gaps about it
constexpr double LARGEST_BUBBLE = 17; // its radius
constexpr double SMALLEST_BUBBLE = 1.2;
constexpr double UNCROWDED = 200; // bubbles, more than which are smaller
constexpr double DOT = 3.6;       // its radius
constexpr double SEEN_THROUGH = 0.6;
constexpr double NOTE_HEIGHT = 18;

} // namespace

PlotName NumberedName(const PlotName& kind, std::size_t number, const std::string& text)
{
    const std::string part = FileNamePart(text);
    return {fmt::format("{}-{}{}{}", kind.file, number, part.empty() ? "" : "-", part),
            fmt::format("{}, {}", kind.title, text), kind.heading};
}

PlotName NameOfGroupPlot(const PlotName& kind, const PlotOfGroup& plot)
{
    if (plot.group.empty())
        return kind;
    PlotName name = NumberedName(kind, plot.number, plot.group);
    name.heading = plot.group;
    return name;
}

Picture NewScatterPlot(const PlotName& name, double frameWidth, double frameHeight)
{
    Picture picture = {};
    picture.name = name.file;
    picture.title = name.title;
    picture.frame = {0, PICTURE_MARGIN, frameWidth, frameHeight};
    if (!name.heading.empty()) {
        picture.frame.top += HEADING_HEIGHT;
        const std::string heading = ShortenedText(name.heading, frameWidth / FONT_SIZE);
        picture.texts.push_back(
            {heading, 0, PICTURE_MARGIN + HEADING_HEIGHT / 3, PictureText::Align::LEFT, true});
    }
    return picture;
}

Picture Finished(Picture picture)
{
    double tickWidth = 0;
    for (const Tick& tick : picture.y.ticks)
        tickWidth = std::max(tickWidth, TextWidth(tick.text) * FONT_SIZE);
    picture.frame.left = SPACE_LEFT + tickWidth;
    for (PictureText& text : picture.texts)
        text.x += picture.frame.left;

    picture.width = picture.frame.left + picture.frame.width + LegendWidth(picture.layers) + PICTURE_MARGIN;
    picture.height = picture.frame.top + picture.frame.height + SPACE_BELOW;
    return picture;
}

Picture WithNotes(Picture picture, const std::vector<std::string>& notes)
{
    for (const std::string& note : notes) {
        const std::string line =
            ShortenedText(note, (picture.width - picture.frame.left - PICTURE_MARGIN) / FONT_SIZE);
        picture.texts.push_back({line, picture.frame.left, picture.height + NOTE_HEIGHT / 3});
        picture.height += NOTE_HEIGHT;
    }
    return picture;
}

std::vector<Point> Between(const std::vector<double>& x, const std::vector<double>& lower,
                           const std::vector<double>& upper)
{
    if (lower.empty())
        return {};
    std::vector<Point> outline = DrawablePoints(x, lower);
    const std::vector<Point> back = DrawablePoints(x, upper);
    outline.insert(outline.end(), back.rbegin(), back.rend());
    return outline;
}

double LegendWidth(const std::vector<Layer>& layers)
{
    double width = 0;
    for (const Layer& layer : layers)
        if (!layer.legend.empty())
            width = std::max(width, LEGEND_SAMPLE + TextWidth(layer.legend) * FONT_SIZE);
    return width;
}

Layer LineBetween(Point first, Point last, Layer::Kind kind, const char* color, std::string legend)
{
    return {kind, color, {{first, last}}, {}, 1.5, std::move(legend)};
}

Layer NullLine(Point first, Point last)
{
    return LineBetween(first, last, Layer::Kind::DOTTED_LINE, color::FAINT, "No effect");
}

Layer Dots(std::vector<Point> points, Layer::Kind kind, const char* color, std::string legend)
{
    std::vector<double> radii(points.size(), DOT);
    return {kind, color, {std::move(points)}, std::move(radii), 1, std::move(legend)};
}

Layer StudyDots(std::vector<Point> studies)
{
    Layer dots = Dots(std::move(studies), Layer::Kind::DISCS, color::POOLED, "Study");
    dots.opacity = SEEN_THROUGH;
    return dots;
}

Layer Bubbles(const std::vector<double>& x, const std::vector<double>& y, const std::vector<double>& weights)
{
    std::vector<std::size_t> drawn;
    for (std::size_t i = 0; i < x.size(); ++i)
        if (IsNumber(x[i]) && IsNumber(y[i]) && IsNumber(weights[i]))
            drawn.push_back(i);
    std::stable_sort(drawn.begin(), drawn.end(), [&](auto a, auto b) { return weights[a] > weights[b]; });
    Layer bubbles = {Layer::Kind::BUBBLES, color::STUDY, {{}}, {}, 1, "Study, area by weight", SEEN_THROUGH};
    const double crowd = std::max(1.0, static_cast<double>(drawn.size()) / UNCROWDED);
    for (const std::size_t i : drawn) {
        const double radius = LARGEST_BUBBLE * std::sqrt(weights[i] / weights[drawn.front()] / crowd);
        bubbles.pieces.front().push_back({x[i], y[i]});
        bubbles.radii.push_back(std::max(radius, SMALLEST_BUBBLE));
    }
    return bubbles;
}

} // namespace host
