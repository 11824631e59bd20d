#include "host/plots/ForestDrawing.h"

#include "host/draw/CutToRectangle.h"
#include "host/plots/ForestExtent.h"
#include "host/plots/ForestLimit.h"
#include "host/plots/PlotAxes.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace host {

namespace {

using Kind = ForestRow::Kind;
using Align = PictureText::Align;

// In pixels.
constexpr double COLUMN_GAP = 20;
constexpr double ROW_HEIGHT = 19;
constexpr double FRAME_WIDTH = 320;
constexpr double AXIS_HEIGHT = 58;
constexpr double LARGEST_SQUARE = 7; // half its side, as of the next ones
constexpr double SMALLEST_SQUARE = 1.2;
constexpr double STEP_SQUARE = 3.5;
constexpr double DIAMOND = 6.5;
constexpr double ARROW = 4;

constexpr double LONGEST_LABEL = 34;  // in units of the font's size
constexpr double LONGEST_REMARK = 14; // likewise

class ForestDrawing
{
public:
    ForestDrawing(const ForestScale& scale, const Forest& forest);

    Picture Draw();

private:
    struct Column
    {
        std::vector<std::string> texts; ///< one a row
        std::string header;
        Align align;
        double at = 0; ///< of the edge that its texts stand at
    };

    Column LabelColumn() const;
    Column RemarkColumn() const;
    Column EffectColumn() const;
    Column WeightColumn() const;
    std::string EffectText(const ForestRow& row) const;
    std::string PlainNumber(double value) const;
    void PlaceColumns();
    void AddTexts(const Column& column);
    double WidthOf(const Column& column) const;
    double TextHeight(double row) const { return picture_.frame.top + (row + 0.5) * ROW_HEIGHT; }

    void SetAxes();
    void AddGuides();
    void AddIntervals();
    void AddSquares();
    void AddFittedDiamonds();
    void AddDiamonds();
    void AddNotes();
    std::vector<Point> ArrowHead(double at, double y, double direction, double size) const;
    void AddDiamond(std::vector<std::vector<Point>>& areas, const ForestInterval& place, double y) const;
    bool HasNullLine() const
    {
        return scale_.measure.hasNoEffect && picture_.x.first <= 0 && picture_.x.last >= 0;
    }
    static double MiddleOf(std::size_t row) { return static_cast<double>(row) + 0.5; }
    double XPerPixel() const { return (picture_.x.last - picture_.x.first) / FRAME_WIDTH; }

    const ForestScale& scale_;
    const Forest& forest_;
    int decimals_;
    Picture picture_ = {};
};

/// Of effects that are shown on another scale than that of the analysis, but for ratios, by the typical
/// standard errors that their intervals have on it.
int DecimalsOf(const AnalysisData& data)
{
    constexpr double WIDTH = 4; // of an interval, in standard errors
    if (!data.natural || data.measure.hasNoEffect)
        return data.decimals;
    std::vector<double> stdErrors;
    for (const Estimates* const shown : {&data.natural->studies, &data.natural->models})
        for (std::size_t i = 0; i < shown->values.size(); ++i)
            if (HasValue(shown->lower[i]) && HasValue(shown->upper[i]))
                stdErrors.push_back((shown->upper[i] - shown->lower[i]) / WIDTH);
    return DecimalsFor(stdErrors);
}

ForestDrawing::ForestDrawing(const ForestScale& scale, const Forest& forest)
    : scale_(scale), forest_(forest), decimals_(scale.decimals - 2)
{}

/// A ratio below 0.005 has more decimals than the others, and one of 1000 or more has fewer.
std::string ForestDrawing::PlainNumber(double value) const
{
    const double size = std::abs(value);
    if (!scale_.showsRatios || !IsNumber(value) || (size >= 0.005 && size < 1000))
        return FixedText(value, decimals_);
    return size >= 1000 && size < 1e5 ? FixedText(value, 0) : fmt::format("{:.2g}", value);
}

std::string ForestDrawing::EffectText(const ForestRow& row) const
{
    if (!row.HasInterval())
        return {};
    const std::string interval =
        fmt::format("[{}, {}]", PlainNumber(row.shown.lower), PlainNumber(row.shown.upper));
    return row.kind == Kind::PREDICTION ? interval : PlainNumber(row.shown.estimate) + ' ' + interval;
}

ForestDrawing::Column ForestDrawing::LabelColumn() const
{
    Column column = {{}, "Study", Align::LEFT};
    for (const ForestRow& row : forest_.rows)
        column.texts.push_back(ShortenedText(row.label, LONGEST_LABEL));
    return column;
}

ForestDrawing::Column ForestDrawing::RemarkColumn() const
{
    Column column = {{}, ShortenedText(forest_.remarkHeader, LONGEST_REMARK), Align::LEFT};
    for (const ForestRow& row : forest_.rows)
        column.texts.push_back(ShortenedText(row.remark, LONGEST_REMARK));
    return column;
}

ForestDrawing::Column ForestDrawing::EffectColumn() const
{
    Column column = {{}, scale_.effectHeader, Align::RIGHT};
    for (const ForestRow& row : forest_.rows)
        column.texts.push_back(EffectText(row));
    return column;
}

ForestDrawing::Column ForestDrawing::WeightColumn() const
{
    Column column = {{}, "Weight", Align::RIGHT};
    for (const ForestRow& row : forest_.rows)
        column.texts.push_back(row.kind == Kind::STUDY ? PercentText(row.weight, 1) : "");
    return column;
}

double ForestDrawing::WidthOf(const Column& column) const
{
    double width = TextWidth(column.header, true);
    for (std::size_t i = 0; i < column.texts.size(); ++i)
        width = std::max(width, TextWidth(column.texts[i], forest_.rows[i].kind != Kind::STUDY));
    return width * FONT_SIZE;
}

void ForestDrawing::AddTexts(const Column& column)
{
    picture_.texts.push_back({column.header, column.at, TextHeight(-1.2), column.align, true});
    for (std::size_t i = 0; i < column.texts.size(); ++i) {
        const Kind kind = forest_.rows[i].kind;
        if (!column.texts[i].empty())
            picture_.texts.push_back({column.texts[i], column.at, TextHeight(static_cast<double>(i)),
                                      column.align, kind == Kind::HEADING || kind == Kind::POOLED});
    }
}

/// Labels, remarks, the frame, effects, weights.
void ForestDrawing::PlaceColumns()
{
    picture_.frame = {0, PICTURE_MARGIN + 1.7 * ROW_HEIGHT, FRAME_WIDTH,
                      ROW_HEIGHT * static_cast<double>(forest_.rows.size())};
    double right = PICTURE_MARGIN;
    std::vector<Column> columns = {LabelColumn()};
    if (!forest_.remarkHeader.empty())
        columns.push_back(RemarkColumn());
    for (Column& column : columns) {
        column.at = right;
        right += WidthOf(column) + COLUMN_GAP;
        AddTexts(column);
    }
    picture_.frame.left = right;
    right += FRAME_WIDTH;
    columns = {EffectColumn()};
    if (forest_.hasWeights)
        columns.push_back(WeightColumn());
    for (Column& column : columns) {
        right += COLUMN_GAP + WidthOf(column);
        column.at = right;
        AddTexts(column);
    }
    picture_.width = right + PICTURE_MARGIN;
}

void ForestDrawing::SetAxes()
{
    picture_.x = EffectAxis(scale_.measure, scale_.measure.name,
                            EffectExtent(forest_.rows, scale_.measure.hasNoEffect));
    picture_.y = {"", static_cast<double>(forest_.rows.size()), 0, {}, false};
}

/// The lines of no effect and of the overall effect.
void ForestDrawing::AddGuides()
{
    const double bottom = picture_.y.first;
    if (HasNullLine())
        picture_.layers.push_back({Layer::Kind::LINE, color::FAINT, {{{0, bottom}, {0, 0}}}});
    if (const double overall = scale_.overall; IsNumber(overall))
        picture_.layers.push_back(
            {Layer::Kind::DASHED_LINE, color::ACCENT, {{{overall, bottom}, {overall, 0}}}, {}, 1.2});
}

/// An arrow head at the end of the frame, for an interval that goes on. `size` is its length and half its
/// height, in pixels.
std::vector<Point> ForestDrawing::ArrowHead(double at, double y, double direction, double size) const
{
    const double back = at - direction * size * XPerPixel();
    const double half = size / ROW_HEIGHT;
    return {{back, y - half}, {at, y}, {back, y + half}};
}

void ForestDrawing::AddIntervals()
{
    Layer studies = {Layer::Kind::LINE, color::INK, {}, {}, 1.2};
    Layer predictions = {Layer::Kind::LINE, color::POOLED, {}, {}, 2.4};
    const auto [first, last] = std::pair(picture_.x.first, picture_.x.last);
    for (std::size_t i = 0; i < forest_.rows.size(); ++i) {
        const ForestRow& row = forest_.rows[i];
        const auto& [estimate, lower, upper] = row.place;
        const bool isLine = row.kind == Kind::STUDY || row.kind == Kind::PREDICTION;
        if (!isLine || !row.place.HasLimits() || lower > last || upper < first)
            continue;
        const double y = MiddleOf(i);
        auto& lines = (row.kind == Kind::STUDY ? studies : predictions).pieces;
        lines.push_back({{std::max(lower, first), y}, {std::min(upper, last), y}});
        if (lower < first)
            lines.push_back(ArrowHead(first, y, -1, ARROW));
        if (upper > last)
            lines.push_back(ArrowHead(last, y, 1, ARROW));
    }
    picture_.layers.push_back(std::move(studies));
    picture_.layers.push_back(std::move(predictions));
}

double LargestWeight(const std::vector<ForestRow>& rows)
{
    double largest = 0;
    for (const ForestRow& row : rows)
        if (row.kind == Kind::STUDY && IsNumber(row.weight))
            largest = std::max(largest, row.weight);
    return largest;
}

/// Half the side of a square whose area is proportional to the weight.
double SizeOfSquare(double weight, double largest)
{
    if (!IsNumber(weight) || largest == 0)
        return SMALLEST_SQUARE;
    return std::max(SMALLEST_SQUARE, LARGEST_SQUARE * std::sqrt(weight / largest));
}

void ForestDrawing::AddSquares()
{
    const double largest = LargestWeight(forest_.rows);
    Layer squares = {Layer::Kind::SQUARES, color::STUDY, {{}}};
    for (std::size_t i = 0; i < forest_.rows.size(); ++i) {
        const ForestRow& row = forest_.rows[i];
        if (row.kind != Kind::STUDY || !IsNumber(row.place.estimate))
            continue;
        squares.pieces.front().push_back({row.place.estimate, MiddleOf(i)});
        squares.radii.push_back(forest_.hasWeights ? SizeOfSquare(row.weight, largest) : STEP_SQUARE);
    }
    picture_.layers.push_back(std::move(squares));
}

/// The line from limit to limit. At a limit beyond the frame it ends in an arrow head.
void ForestDrawing::AddDiamond(std::vector<std::vector<Point>>& areas, const ForestInterval& place,
                               double y) const
{
    const double half = DIAMOND / ROW_HEIGHT;
    const double head = DIAMOND * XPerPixel();
    Rectangle shown = RectangleOf(picture_.x, picture_.y);
    if (place.lower < picture_.x.first) {
        shown.least.x += head;
        areas.push_back(ArrowHead(picture_.x.first, y, -1, DIAMOND));
    }
    if (place.upper > picture_.x.last) {
        shown.most.x -= head;
        areas.push_back(ArrowHead(picture_.x.last, y, 1, DIAMOND));
    }
    areas.push_back(CutToRectangle(
        {{place.lower, y}, {place.estimate, y - half}, {place.upper, y}, {place.estimate, y + half}}, shown));
}

void ForestDrawing::AddFittedDiamonds()
{
    Layer diamonds = {Layer::Kind::AREA, color::FITTED, {}};
    for (std::size_t i = 0; i < forest_.rows.size(); ++i)
        if (IsDrawable(forest_.rows[i].fitted))
            AddDiamond(diamonds.pieces, forest_.rows[i].fitted, MiddleOf(i));
    if (!diamonds.pieces.empty())
        picture_.layers.push_back(std::move(diamonds));
}

void ForestDrawing::AddDiamonds()
{
    Layer diamonds = {Layer::Kind::AREA, color::POOLED, {}};
    for (std::size_t i = 0; i < forest_.rows.size(); ++i)
        if (forest_.rows[i].kind == Kind::POOLED && IsDrawable(forest_.rows[i].place))
            AddDiamond(diamonds.pieces, forest_.rows[i].place, MiddleOf(i));
    picture_.layers.push_back(std::move(diamonds));
}

void ForestDrawing::AddNotes()
{
    double y = picture_.frame.top + picture_.frame.height + AXIS_HEIGHT;
    double width = 0;
    std::vector<std::string> notes = forest_.notes;
    if (scale_.measure.hasNoEffect && !HasNullLine())
        notes.push_back(fmt::format("The axis does not reach to no effect, which is at {}.",
                                    scale_.measure.isRatio ? 1 : 0));
    for (const std::string& note : notes) {
        picture_.texts.push_back({note, PICTURE_MARGIN, y + ROW_HEIGHT / 2});
        width = std::max(width, TextWidth(note) * FONT_SIZE);
        y += ROW_HEIGHT;
    }
    picture_.width = std::max(picture_.width, width + 2 * PICTURE_MARGIN);
    picture_.height = y + PICTURE_MARGIN / 2;
}

Picture ForestDrawing::Draw()
{
    picture_.name = forest_.name;
    picture_.title = forest_.title;
    picture_.description = forest_.description;
    picture_.rowHeight = ROW_HEIGHT;
    PlaceColumns();
    SetAxes();
    AddFittedDiamonds();
    AddGuides();
    AddSquares();
    AddIntervals();
    AddDiamonds();
    AddNotes();
    return std::move(picture_);
}

} // namespace

Picture DrawForest(const ForestScale& scale, const Forest& forest)
{
    const Forest readable = WithReadableRows(forest);
    return ForestDrawing(scale, readable).Draw();
}

Picture DrawForest(const AnalysisData& data, const Forest& forest)
{
    return DrawForest({.measure = data.measure,
                       .effectHeader = data.IntervalHeader(data.measure.symbol),
                       .decimals = DecimalsOf(data),
                       .showsRatios = data.measure.isRatio && data.natural.has_value(),
                       .overall = OverallPlace(data)},
                      forest);
}

} // namespace host
