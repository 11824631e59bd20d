#include "host/ForestPlot.h"

#include "host/ForestRows.h"
#include "host/ModelSections.h"
#include "host/PlainText.h"
#include "host/PlotAxes.h"
#include "host/PlotGroups.h"
#include "host/ReportParts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Kind = ForestRow::Kind;
using Align = PictureText::Align;

// In pixels.
constexpr double MARGIN = 14;
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
constexpr double LONGEST_REACH = 4;   // of an interval drawn in full, in typical half lengths

/// What a forest plot is made of.
struct Forest
{
    std::string name;
    std::string title;
    std::string remarkHeader; ///< empty when the rows have no remarks
    bool hasWeights;
    std::vector<ForestRow> rows;
    std::vector<std::string> notes; ///< lines below the axis
};

bool HasInterval(const ForestRow& row)
{
    return row.kind != Kind::HEADING && row.kind != Kind::GAP;
}

std::string PercentText(double fraction)
{
    return IsNumber(fraction) ? FixedText(100 * fraction, 1) + '%' : NO_VALUE;
}

/// Draws a forest plot: texts in columns left and right of a frame with a unit of height for each row.
class ForestDrawing
{
public:
    ForestDrawing(const ReportSource& source, const Forest& forest);

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
    void AddDiamonds();
    void AddNotes();
    std::vector<std::vector<Point>> Arrow(double at, double y, double direction) const;
    double XPerPixel() const { return (picture_.x.last - picture_.x.first) / FRAME_WIDTH; }

    const ReportSource& source_;
    const Forest& forest_;
    int decimals_;
    Picture picture_ = {};
};

ForestDrawing::ForestDrawing(const ReportSource& source, const Forest& forest)
    : source_(source), forest_(forest), decimals_(source.decimals - 2)
{}

/// Ratios need digits at one end and none at the other.
std::string ForestDrawing::PlainNumber(double value) const
{
    const double size = std::abs(value);
    if (source_.binary == nullptr || !IsNumber(value) || (size >= 0.005 && size < 1000))
        return FixedText(value, decimals_);
    return size >= 1000 && size < 1e5 ? FixedText(value, 0) : fmt::format("{:.2g}", value);
}

std::string ForestDrawing::EffectText(const ForestRow& row) const
{
    if (!HasInterval(row))
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
    Column column = {{}, source_.IntervalHeader(source_.effect.symbol), Align::RIGHT};
    for (const ForestRow& row : forest_.rows)
        column.texts.push_back(EffectText(row));
    return column;
}

ForestDrawing::Column ForestDrawing::WeightColumn() const
{
    Column column = {{}, "Weight", Align::RIGHT};
    for (const ForestRow& row : forest_.rows)
        column.texts.push_back(row.kind == Kind::STUDY ? PercentText(row.weight) : "");
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
    picture_.frame = {0, MARGIN + 1.7 * ROW_HEIGHT, FRAME_WIDTH,
                      ROW_HEIGHT * static_cast<double>(forest_.rows.size())};
    double right = MARGIN;
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
    picture_.width = right + MARGIN;
}

/// Half the length of an interval such as the studies have; a few very long ones shall not squeeze the rest.
double TypicalReach(const std::vector<ForestRow>& rows)
{
    std::vector<double> reaches;
    for (const ForestRow& row : rows)
        if (const double length = row.place.upper - row.place.lower; HasInterval(row) && IsNumber(length))
            reaches.push_back(length / 2);
    if (reaches.empty())
        return 0;
    const auto middle = reaches.begin() + static_cast<std::ptrdiff_t>(reaches.size() / 2);
    std::nth_element(reaches.begin(), middle, reaches.end());
    return *middle;
}

Extent EffectExtent(const std::vector<ForestRow>& rows)
{
    const double reach = LONGEST_REACH * TypicalReach(rows);
    Extent extent;
    for (const ForestRow& row : rows) {
        if (!HasInterval(row) || !IsNumber(row.place.estimate))
            continue;
        extent.Cover(row.place.estimate);
        extent.Cover(std::max(row.place.lower, row.place.estimate - reach));
        extent.Cover(std::min(row.place.upper, row.place.estimate + reach));
    }
    Extent withNull = extent;
    withNull.Cover(0);
    if (!(withNull.Length() > 2 * extent.Length()))
        extent = withNull;
    extent.Pad(0.03);
    return extent;
}

void ForestDrawing::SetAxes()
{
    picture_.x = EffectAxis(source_.effect, source_.effect.name, EffectExtent(forest_.rows));
    picture_.y = {"", static_cast<double>(forest_.rows.size()), 0, {}, false};
}

/// The lines of no effect and of the overall effect.
void ForestDrawing::AddGuides()
{
    const double bottom = picture_.y.first;
    picture_.layers.push_back({Layer::Kind::LINE, color::FAINT, {{{0, bottom}, {0, 0}}}});
    const double overall = PooledRows(source_).effects.values.back();
    if (IsNumber(overall))
        picture_.layers.push_back(
            {Layer::Kind::DASHED_LINE, color::ACCENT, {{{overall, bottom}, {overall, 0}}}, {}, 1.2});
}

/// An open arrow head at the end of the frame, for an interval that goes on.
std::vector<std::vector<Point>> ForestDrawing::Arrow(double at, double y, double direction) const
{
    const double back = at - direction * ARROW * XPerPixel();
    const double half = ARROW / ROW_HEIGHT;
    return {{{back, y - half}, {at, y}, {back, y + half}}};
}

void ForestDrawing::AddIntervals()
{
    Layer studies = {Layer::Kind::LINE, color::INK, {}, {}, 1.2};
    Layer predictions = {Layer::Kind::LINE, color::POOLED, {}, {}, 2.4};
    const auto [first, last] = std::pair(picture_.x.first, picture_.x.last);
    for (std::size_t i = 0; i < forest_.rows.size(); ++i) {
        const ForestRow& row = forest_.rows[i];
        if (row.kind != Kind::STUDY && row.kind != Kind::PREDICTION)
            continue;
        const ForestInterval& place = row.place;
        if (std::isnan(place.lower) || std::isnan(place.upper) || place.lower > last || place.upper < first)
            continue;
        const double y = static_cast<double>(i) + 0.5;
        auto& lines = (row.kind == Kind::STUDY ? studies : predictions).pieces;
        lines.push_back({{std::max(place.lower, first), y}, {std::min(place.upper, last), y}});
        if (place.lower < first)
            lines.push_back(Arrow(first, y, -1).front());
        if (place.upper > last)
            lines.push_back(Arrow(last, y, 1).front());
    }
    picture_.layers.push_back(std::move(studies));
    picture_.layers.push_back(std::move(predictions));
}

void ForestDrawing::AddSquares()
{
    double largest = 0;
    for (const ForestRow& row : forest_.rows)
        if (row.kind == Kind::STUDY && IsNumber(row.weight))
            largest = std::max(largest, row.weight);
    Layer squares = {Layer::Kind::SQUARES, color::STUDY, {{}}};
    for (std::size_t i = 0; i < forest_.rows.size(); ++i) {
        const ForestRow& row = forest_.rows[i];
        if (row.kind != Kind::STUDY || !IsNumber(row.place.estimate))
            continue;
        const double size =
            forest_.hasWeights ? LARGEST_SQUARE * std::sqrt(row.weight / largest) : STEP_SQUARE;
        squares.pieces.front().push_back({row.place.estimate, static_cast<double>(i) + 0.5});
        squares.radii.push_back(std::max(size, SMALLEST_SQUARE));
    }
    picture_.layers.push_back(std::move(squares));
}

void ForestDrawing::AddDiamonds()
{
    Layer diamonds = {Layer::Kind::AREA, color::POOLED, {}};
    const double half = DIAMOND / ROW_HEIGHT;
    for (std::size_t i = 0; i < forest_.rows.size(); ++i) {
        const ForestInterval& place = forest_.rows[i].place;
        if (forest_.rows[i].kind != Kind::POOLED || !IsNumber(place.estimate))
            continue;
        const double y = static_cast<double>(i) + 0.5;
        diamonds.pieces.push_back(
            {{place.lower, y}, {place.estimate, y - half}, {place.upper, y}, {place.estimate, y + half}});
    }
    picture_.layers.push_back(std::move(diamonds));
}

void ForestDrawing::AddNotes()
{
    double y = picture_.frame.top + picture_.frame.height + AXIS_HEIGHT;
    double width = 0;
    for (const std::string& note : forest_.notes) {
        picture_.texts.push_back({note, MARGIN, y + ROW_HEIGHT / 2});
        width = std::max(width, TextWidth(note) * FONT_SIZE);
        y += ROW_HEIGHT;
    }
    picture_.width = std::max(picture_.width, width + 2 * MARGIN);
    picture_.height = y + MARGIN / 2;
}

Picture ForestDrawing::Draw()
{
    picture_.name = forest_.name;
    picture_.title = forest_.title;
    PlaceColumns();
    SetAxes();
    AddGuides();
    AddSquares();
    AddIntervals();
    AddDiamonds();
    AddNotes();
    return std::move(picture_);
}

/// The model, and how much the studies differ under it.
std::vector<std::string> Notes(const ReportSource& source)
{
    const MABaseModel& base = source.base;
    std::vector<std::string> notes = {Capitalised(WordingOfModel(source.settings))};
    if (!HasAnyValue(base.GetHomoTestChisquareQ()))
        return notes;
    std::string note = fmt::format(
        "Heterogeneity: Q {}, df {}, p {}, I² {}", FixedText(base.GetHomoTestChisquareQ().back(), 2),
        FixedText(base.GetHomoTestdf().back(), 0), PValueText(base.GetHomoTestSig().back()),
        PercentText(base.GetI2Index().back()));
    if (const std::vector<double> tau2 = base.GetTau2Var(); HasAnyValue(tau2))
        note += fmt::format(", tau² {}", NumberText(tau2.back()));
    notes.push_back(std::move(note));
    return notes;
}

std::size_t CountOfRows(const Forest& forest, Kind kind)
{
    return static_cast<std::size_t>(std::count_if(forest.rows.begin(), forest.rows.end(),
                                                  [kind](const ForestRow& row) { return row.kind == kind; }));
}

} // namespace

std::vector<Picture> ForestPictures(const ReportSource& source)
{
    Forest forest = {"forest", "Forest plot", "", true, ForestRows(source), Notes(source)};
    std::vector<Picture> pictures = {ForestDrawing(source, forest).Draw()};
    pictures.back().description = fmt::format(
        "{}: {} of {} with {} intervals, squares by weight, and the pooled effects as diamonds.",
        forest.title, source.effect.name, CountOfStudies(CountOfRows(forest, Kind::STUDY)), source.level);
    forest = {"cumulative-forest",
              "Cumulative forest plot",
              LabelText(source.request.cumulative.column),
              false,
              CumulativeForestRows(source),
              {Capitalised(WordingOfModel(source.settings))}};
    if (forest.rows.empty())
        return pictures;
    pictures.push_back(ForestDrawing(source, forest).Draw());
    pictures.back().description =
        fmt::format("{}: the pooled {} with its {} interval after each of {}, in order of {}.", forest.title,
                    source.effect.name, source.level, CountOfStudies(CountOfRows(forest, Kind::STUDY)),
                    forest.remarkHeader);
    return pictures;
}

} // namespace host
