#include "host/plots/ForestMarks.h"

#include "host/draw/CutToRectangle.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace host {

namespace {

using Kind = ForestRow::Kind;
using Pieces = std::vector<std::vector<Point>>;

// In pixels.
constexpr double LARGEST_SQUARE = 7; // half its side, as of the next ones
constexpr double SMALLEST_SQUARE = 1.2;
constexpr double STEP_SQUARE = 3.5;
constexpr double DIAMOND = 6.5;
constexpr double ARROW = 4;
constexpr double SHORTEST_INTERVAL = 1; // half its length

class ForestMarks
{
public:
    ForestMarks(const ForestScale& scale, const Forest& forest, const ForestAxes& axes,
                const std::vector<ForestMark>& marks);

    std::vector<Layer> Layers() const;

private:
    Layer NullLine() const;
    Layer OverallLine() const;
    Layer FittedDiamonds() const;
    Layer Squares() const;
    Layer Intervals() const;
    Layer CoveredIntervals() const;
    Layer PredictionBars() const;
    Layer PredictionDiamonds() const;
    Layer Diamonds() const;

    double SizeOfSquare(const ForestRow& row) const;
    bool IsCovered(const ForestRow& row) const;
    std::vector<Point> ArrowHead(double at, double y, double direction, double size) const;
    void AddInterval(Pieces& lines, const ForestInterval& place, double y) const;
    void AddDiamond(Pieces& areas, const ForestInterval& place, double y) const;
    bool HasDiamondPrediction() const { return scale_.request.options.prediction == PredictionLook::DIAMOND; }

    const ForestScale& scale_;
    const Forest& forest_;
    const ForestAxes& axes_;
    const std::vector<ForestMark>& marks_;
    const ForestStyle& style_;
    double largestWeight_ = 0;
};

/// The squares of all pages are in proportion to the largest weight of all studies.
ForestMarks::ForestMarks(const ForestScale& scale, const Forest& forest, const ForestAxes& axes,
                         const std::vector<ForestMark>& marks)
    : scale_(scale), forest_(forest), axes_(axes), marks_(marks), style_(*scale.style)
{
    for (const ForestRow& row : forest.rows)
        if (row.kind == Kind::STUDY && IsNumber(row.weight))
            largestWeight_ = std::max(largestWeight_, row.weight);
}

Layer ForestMarks::NullLine() const
{
    Layer line = {Layer::Kind::LINE, style_.nullColor, {}};
    if (axes_.HasNullLine(scale_.measure))
        line.pieces.push_back({{0, axes_.y.first}, {0, axes_.y.last}});
    return line;
}

Layer ForestMarks::OverallLine() const
{
    const char* const color =
        style_.insideColor ? style_.diamondColor : color::ACCENT; // journals print no red
    Layer line = {Layer::Kind::DASHED_LINE, color, {}, {}, style_.insideColor ? 0.8 : 1.2};
    if (style_.hasOverallLine && IsNumber(scale_.overall))
        line.pieces.push_back({{scale_.overall, axes_.y.first}, {scale_.overall, axes_.y.last}});
    return line;
}

/// An arrow head at the end of the frame, for an interval that goes on. `size` is its length and half its
/// height, in pixels.
std::vector<Point> ForestMarks::ArrowHead(double at, double y, double direction, double size) const
{
    const double back = at - direction * size * axes_.XPerPixel();
    return {{back, y - size}, {at, y}, {back, y + size}};
}

/// An interval beyond the frame is an arrow head alone. A very short one is as long as can be seen.
void ForestMarks::AddInterval(Pieces& lines, const ForestInterval& place, double y) const
{
    const auto [first, last] = std::pair(axes_.x.first, axes_.x.last);
    const double shortest = SHORTEST_INTERVAL * axes_.XPerPixel();
    const bool isShort = place.upper - place.lower < 2 * shortest;
    const double lower = isShort ? place.estimate - shortest : place.lower;
    const double upper = isShort ? place.estimate + shortest : place.upper;
    if (lower < last && upper > first)
        lines.push_back({{std::max(lower, first), y}, {std::min(upper, last), y}});
    if (place.lower < first)
        lines.push_back(ArrowHead(first, y, -1, ARROW));
    if (place.upper > last)
        lines.push_back(ArrowHead(last, y, 1, ARROW));
}

/// Half the side of a square whose area is proportional to the weight.
double ForestMarks::SizeOfSquare(const ForestRow& row) const
{
    if (!forest_.hasWeights)
        return STEP_SQUARE;
    if (!IsNumber(row.weight) || largestWeight_ == 0)
        return SMALLEST_SQUARE;
    return std::max(SMALLEST_SQUARE, LARGEST_SQUARE * std::sqrt(row.weight / largestWeight_));
}

/// Whether nothing of the interval is to be seen beside its square.
bool ForestMarks::IsCovered(const ForestRow& row) const
{
    const double reach = SizeOfSquare(row) * axes_.XPerPixel();
    return row.place.HasLimits() && row.place.lower > row.place.estimate - reach &&
           row.place.upper < row.place.estimate + reach;
}

Layer ForestMarks::Intervals() const
{
    Layer studies = {Layer::Kind::LINE, color::INK, {}, {}, 1.2};
    for (const auto& [row, y] : marks_)
        if (row->kind == Kind::STUDY && row->place.HasLimits())
            AddInterval(studies.pieces, row->place, y);
    return studies;
}

/// Intervals that are visible on a dark square.
Layer ForestMarks::CoveredIntervals() const
{
    Layer covered = {Layer::Kind::LINE, style_.insideColor ? style_.insideColor : color::INK, {}, {}, 1.4};
    for (const auto& [row, y] : marks_)
        if (style_.insideColor && row->kind == Kind::STUDY && IsCovered(*row))
            AddInterval(covered.pieces, row->place, y);
    return covered;
}

Layer ForestMarks::PredictionBars() const
{
    Layer bars = {Layer::Kind::LINE, style_.diamondColor, {}, {}, 2.4};
    for (const auto& [row, y] : marks_)
        if (row->kind == Kind::PREDICTION && row->place.HasLimits() && !HasDiamondPrediction())
            AddInterval(bars.pieces, row->place, y);
    return bars;
}

Layer ForestMarks::Squares() const
{
    Layer squares = {Layer::Kind::SQUARES, style_.squareColor, {{}}};
    for (const auto& [row, y] : marks_) {
        if (row->kind != Kind::STUDY || !IsNumber(row->place.estimate))
            continue;
        squares.pieces.front().push_back({row->place.estimate, y});
        squares.radii.push_back(SizeOfSquare(*row));
    }
    return squares;
}

/// The line from limit to limit. At a limit beyond the frame it ends in an arrow head.
void ForestMarks::AddDiamond(Pieces& areas, const ForestInterval& place, double y) const
{
    const double head = DIAMOND * axes_.XPerPixel();
    Rectangle shown = RectangleOf(axes_.x, axes_.y);
    if (place.lower < axes_.x.first) {
        shown.least.x += head;
        areas.push_back(ArrowHead(axes_.x.first, y, -1, DIAMOND));
    }
    if (place.upper > axes_.x.last) {
        shown.most.x -= head;
        areas.push_back(ArrowHead(axes_.x.last, y, 1, DIAMOND));
    }
    const double least = SHORTEST_INTERVAL * axes_.XPerPixel(); // on each side, to be seen
    areas.push_back(CutToRectangle({{std::min(place.lower, place.estimate - least), y},
                                    {place.estimate, y - DIAMOND},
                                    {std::max(place.upper, place.estimate + least), y},
                                    {place.estimate, y + DIAMOND}},
                                   shown));
}

Layer ForestMarks::FittedDiamonds() const
{
    Layer diamonds = {Layer::Kind::AREA, color::FITTED, {}};
    for (const auto& [row, y] : marks_)
        if (IsDrawable(row->fitted))
            AddDiamond(diamonds.pieces, row->fitted, y);
    return diamonds;
}

Layer ForestMarks::PredictionDiamonds() const
{
    Layer diamonds = {Layer::Kind::AREA, color::PREDICTED, {}};
    for (const auto& [row, y] : marks_)
        if (row->kind == Kind::PREDICTION && IsDrawable(row->place) && HasDiamondPrediction())
            AddDiamond(diamonds.pieces, row->place, y);
    return diamonds;
}

Layer ForestMarks::Diamonds() const
{
    Layer diamonds = {Layer::Kind::AREA, style_.diamondColor, {}};
    for (const auto& [row, y] : marks_)
        if (row->kind == Kind::POOLED && IsDrawable(row->place))
            AddDiamond(diamonds.pieces, row->place, y);
    return diamonds;
}

/// An interval lies on its square where that is pale, and below it where that is dark.
std::vector<Layer> ForestMarks::Layers() const
{
    std::vector<Layer> layers = {FittedDiamonds(), NullLine(), OverallLine(), Squares(), Intervals()};
    if (style_.insideColor)
        std::swap(layers[3], layers[4]);
    for (const Layer& layer : {CoveredIntervals(), PredictionBars(), PredictionDiamonds(), Diamonds()})
        layers.push_back(layer);
    std::erase_if(layers, [](const Layer& layer) { return layer.pieces.empty(); });
    return layers;
}

} // namespace

std::vector<Layer> ForestLayers(const ForestScale& scale, const Forest& forest, const ForestAxes& axes,
                                const std::vector<ForestMark>& marks)
{
    return ForestMarks(scale, forest, axes, marks).Layers();
}

} // namespace host
