#include "host/plots/ForestDrawing.h"

#include "host/plots/ForestExtent.h"
#include "host/plots/ForestLimit.h"
#include "host/plots/ForestMarks.h"
#include "host/plots/ForestPlaces.h"
#include "host/plots/PlotAxes.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

namespace host {

namespace {

using Kind = ForestRow::Kind;
using Align = PictureText::Align;
using Lines = std::vector<std::string>;

// In pixels.
constexpr double TICKS_HEIGHT = 30;
constexpr double AXIS_TITLE_HEIGHT = 22;
constexpr double NULL_GAP = 8; // of labels on its sides
constexpr double LEAST_FAVOURS_WIDTH = 70;
constexpr double BEYOND_FRAME = 30; // to where they may reach
constexpr double PAGE_SHAPE = 1.36; // height of a page over its width, less than that of paper

/// Rows that are drawn together.
struct RowRange
{
    std::size_t first;
    std::size_t end;
};

class ForestDrawing
{
public:
    ForestDrawing(const ForestScale& scale, const Forest& forest);

    /// Of all rows, with pages where they do not fit one.
    Picture Draw() const;

private:
    Picture DrawRows(const RowRange& rows) const;
    Picture NewPicture(const RowRange& rows) const;
    Axis EffectAxisOf() const;
    ForestAxes AxesOf(const RowRange& rows) const;
    double HeightOf(const RowRange& rows) const;
    std::vector<ForestMark> MarksOf(const RowRange& rows) const;
    std::vector<double> CutsOf(const Picture& picture) const;

    void AddTitle(Picture& picture) const;
    void AddHeader(Picture& picture, const PlacedColumn& column) const;
    void AddGroupHeaders(Picture& picture) const;
    void AddHeaders(Picture& picture) const;
    void AddTexts(Picture& picture, const PlacedColumn& column, const RowRange& rows) const;
    void AddNoteRows(Picture& picture, const RowRange& rows) const;
    std::array<Lines, 2> FavoursSides(const Picture& picture) const;
    double FavoursHeight(const Picture& picture) const;
    void AddFavours(Picture& picture, double top) const;
    double AddBelow(Picture& picture, bool hasNotes) const;
    double NullInFrame(const Picture& picture) const;
    Lines NoteLines() const;

    bool MayCutBefore(std::size_t row) const;
    std::vector<RowRange> Pages(double mostHeight) const;
    std::vector<Picture> DrawPages(const Picture& whole) const;

    const ForestScale& scale_;
    const Forest& forest_;
    ForestPlaces places_;
    Axis axis_;
};

/// Lines about a middle.
void AddLines(Picture& picture, const Lines& lines, const PictureText& place)
{
    double y = place.y - FOREST_LINE * (static_cast<double>(lines.size()) - 1) / 2;
    for (const std::string& line : lines) {
        if (!line.empty())
            picture.texts.push_back({line, place.x, y, place.align, place.isBold});
        y += FOREST_LINE;
    }
}

/// Every other tick, of ratios and differences that of no effect among them, until the texts have room.
std::vector<Tick> WithRoom(std::vector<Tick> ticks, double width)
{
    const auto needed = [&] {
        double sum = 0;
        for (const Tick& tick : ticks)
            sum += FONT_SIZE * (TextWidth(tick.text) + 0.8);
        return sum;
    };
    while (ticks.size() > 2 && needed() > width) {
        const auto null =
            std::find_if(ticks.begin(), ticks.end(), [](const Tick& tick) { return tick.at == 0; });
        const std::ptrdiff_t kept = null == ticks.end() ? 0 : (null - ticks.begin()) % 2;
        std::vector<Tick> fewer;
        for (auto i = static_cast<std::size_t>(kept); i < ticks.size(); i += 2)
            fewer.push_back(ticks[i]);
        ticks = std::move(fewer);
    }
    return ticks;
}

ForestDrawing::ForestDrawing(const ForestScale& scale, const Forest& forest)
    : scale_(scale), forest_(forest), places_(PlacesOf(scale, forest)), axis_(EffectAxisOf())
{}

Axis ForestDrawing::EffectAxisOf() const
{
    const auto& limits = scale_.request.options.axisLimits;
    const Extent extent = limits ? ExtentBetween(*limits, scale_.measure.isRatio)
                                 : EffectExtent(forest_.rows, scale_.measure.hasNoEffect);
    Axis axis = EffectAxis(scale_.measure, scale_.measure.name, extent);
    if (scale_.style->axisTitle)
        axis.title = WithNames(scale_.style->axisTitle, scale_.names);
    axis.ticks = WithRoom(std::move(axis.ticks), places_.Frame().width);
    return axis;
}

double ForestDrawing::HeightOf(const RowRange& rows) const
{
    double height = 0;
    for (std::size_t row = rows.first; row < rows.end; ++row)
        height += places_.rows[row].height;
    return height;
}

ForestAxes ForestDrawing::AxesOf(const RowRange& rows) const
{
    return {axis_, {"", HeightOf(rows), 0, {}, false}, places_.Frame().width};
}

std::vector<ForestMark> ForestDrawing::MarksOf(const RowRange& rows) const
{
    std::vector<ForestMark> marks;
    double top = 0;
    for (std::size_t row = rows.first; row < rows.end; ++row) {
        marks.push_back({&forest_.rows[row], top + places_.rows[row].height / 2});
        top += places_.rows[row].height;
    }
    return marks;
}

std::vector<double> ForestDrawing::CutsOf(const Picture& picture) const
{
    std::vector<double> cuts = {picture.frame.top};
    double top = picture.frame.top;
    for (std::size_t row = 0; row < forest_.rows.size(); ++row) {
        top += places_.rows[row].height;
        if (MayCutBefore(row + 1))
            cuts.push_back(top);
    }
    return cuts;
}

void ForestDrawing::AddTitle(Picture& picture) const
{
    const auto lines = static_cast<double>(places_.title.size());
    AddLines(picture, places_.title,
             {"", PICTURE_MARGIN, PICTURE_MARGIN + FOREST_LINE * lines / 2, Align::LEFT, true});
}

/// The last line of each header stands at one height.
void ForestDrawing::AddHeader(Picture& picture, const PlacedColumn& column) const
{
    const auto lines = static_cast<double>(column.header.size());
    const double y = places_.frameTop - 13 - FOREST_LINE * (lines - 1) / 2;
    AddLines(picture, column.header, {"", column.TextsAt(), y, column.column.align, true});
}

/// Over the middle of their columns, with a rule below.
void ForestDrawing::AddGroupHeaders(Picture& picture) const
{
    std::size_t lines = 1;
    for (const PlacedColumn& column : places_.columns)
        if (!column.column.groupHeader.empty())
            lines = std::max(lines, column.header.size());
    const double bottom = places_.frameTop - 8 - FOREST_LINE * static_cast<double>(lines);
    for (std::size_t first = 0; first < places_.columns.size();) {
        const std::string& header = places_.columns[first].column.groupHeader;
        std::size_t last = first;
        while (last + 1 < places_.columns.size() && places_.columns[last + 1].column.groupHeader == header)
            ++last;
        const double left = places_.columns[first].left;
        const double right = places_.columns[last].Right();
        if (!header.empty()) {
            picture.texts.push_back({header, (left + right) / 2, bottom - 11, Align::CENTER, true});
            picture.rules.push_back({left, right, bottom - 1});
        }
        first = last + 1;
    }
}

void ForestDrawing::AddHeaders(Picture& picture) const
{
    for (const PlacedColumn& column : places_.columns)
        AddHeader(picture, column);
    AddGroupHeaders(picture);
    if (scale_.style->favoursStandAbove)
        AddFavours(picture, places_.frameTop - 5 - FavoursHeight(picture));
    if (scale_.style->hasHeaderRule)
        picture.rules.push_back({PICTURE_MARGIN, places_.width - PICTURE_MARGIN, places_.frameTop - 3});
}

void ForestDrawing::AddTexts(Picture& picture, const PlacedColumn& column, const RowRange& rows) const
{
    if (column.lines.empty())
        return;
    double top = picture.frame.top;
    for (std::size_t row = rows.first; row < rows.end; ++row) {
        const Kind kind = forest_.rows[row].kind;
        const double height = places_.rows[row].height;
        AddLines(picture, column.lines[row],
                 {"", column.TextsAt(), top + height / 2, column.column.align,
                  kind == Kind::HEADING || kind == Kind::POOLED});
        top += height;
    }
}

void ForestDrawing::AddNoteRows(Picture& picture, const RowRange& rows) const
{
    double top = picture.frame.top;
    for (std::size_t row = rows.first; row < rows.end; ++row) {
        AddLines(picture, places_.rows[row].note,
                 {"", PICTURE_MARGIN, top + places_.rows[row].height / 2, Align::LEFT, false});
        top += places_.rows[row].height;
    }
}

double ForestDrawing::NullInFrame(const Picture& picture) const
{
    const double share = std::clamp(-axis_.first / (axis_.last - axis_.first), 0.0, 1.0);
    return picture.frame.left + share * picture.frame.width;
}

/// The labels of both sides of no effect, in lines as wide as the side and a little more.
std::array<Lines, 2> ForestDrawing::FavoursSides(const Picture& picture) const
{
    const auto& favours = scale_.request.options.favours;
    if (!favours)
        return {};
    const double toLeft = NullInFrame(picture) - picture.frame.left;
    const auto width = [](double side) {
        return std::max(side + BEYOND_FRAME - NULL_GAP, LEAST_FAVOURS_WIDTH);
    };
    return {FavoursLines(scale_, favours->first, width(toLeft)),
            FavoursLines(scale_, favours->second, width(picture.frame.width - toLeft))};
}

double ForestDrawing::FavoursHeight(const Picture& picture) const
{
    const auto [left, right] = FavoursSides(picture);
    return FOREST_LINE * static_cast<double>(std::max(left.size(), right.size()));
}

void ForestDrawing::AddFavours(Picture& picture, double top) const
{
    const auto [left, right] = FavoursSides(picture);
    const double null = NullInFrame(picture);
    const auto middle = [&](const Lines& lines) {
        return top + FOREST_LINE * static_cast<double>(lines.size()) / 2;
    };
    AddLines(picture, left, {"", null - NULL_GAP, middle(left), Align::RIGHT, false});
    AddLines(picture, right, {"", null + NULL_GAP, middle(right), Align::LEFT, false});
}

/// The notes in lines as wide as their place.
Lines ForestDrawing::NoteLines() const
{
    Lines notes = forest_.notes;
    const bool hasNull = axis_.first <= 0 && axis_.last >= 0;
    if (scale_.measure.hasNoEffect && !hasNull)
        notes.push_back(fmt::format("The axis does not reach to no effect, which is at {}.",
                                    scale_.measure.isRatio ? 1 : 0));
    const double width =
        scale_.style->notesStandBeside ? places_.NoteWidth() : places_.width - 2 * PICTURE_MARGIN;
    Lines lines;
    for (const std::string& note : notes)
        for (std::string& line : WrappedText(note, width / FONT_SIZE))
            lines.push_back(std::move(line));
    return lines;
}

/// What stands below the frame. Returns its end.
double ForestDrawing::AddBelow(Picture& picture, bool hasNotes) const
{
    const double bottom = picture.frame.top + picture.frame.height;
    double end = bottom + TICKS_HEIGHT + (axis_.title.empty() ? 0 : AXIS_TITLE_HEIGHT);
    if (!scale_.style->favoursStandAbove) {
        AddFavours(picture, end - 4);
        end += FavoursHeight(picture);
    }
    const Lines notes = hasNotes ? NoteLines() : Lines();
    const double height = FOREST_LINE * static_cast<double>(notes.size());
    const double top = scale_.style->notesStandBeside ? bottom + 4 : end + 6;
    AddLines(picture, notes, {"", PICTURE_MARGIN, top + height / 2, Align::LEFT, false});
    return std::max(end, top + height);
}

Picture ForestDrawing::NewPicture(const RowRange& rows) const
{
    Picture picture = {};
    picture.name = forest_.name;
    picture.title = forest_.title;
    picture.description = forest_.description;
    picture.rowHeight = FOREST_ROW;
    picture.width = places_.width;
    picture.frame = {places_.Frame().left, places_.frameTop, places_.Frame().width, HeightOf(rows)};
    return picture;
}

Picture ForestDrawing::DrawRows(const RowRange& rows) const
{
    Picture picture = NewPicture(rows);
    const ForestAxes axes = AxesOf(rows);
    picture.x = axes.x;
    picture.y = axes.y;
    picture.layers = ForestLayers(scale_, forest_, axes, MarksOf(rows));
    AddTitle(picture);
    AddHeaders(picture);
    for (const PlacedColumn& column : places_.columns)
        AddTexts(picture, column, rows);
    AddNoteRows(picture, rows);
    const bool isEnd = rows.end == forest_.rows.size();
    picture.height = AddBelow(picture, isEnd) + PICTURE_MARGIN / 2;
    return picture;
}

/// Models stay with the last of their studies, and headings with the first.
bool ForestDrawing::MayCutBefore(std::size_t row) const
{
    if (row == 0 || row >= forest_.rows.size())
        return true;
    const Kind next = forest_.rows[row].kind;
    const Kind last = forest_.rows[row - 1].kind;
    return last != Kind::HEADING && (last == Kind::GAP || next == Kind::STUDY || next == Kind::HEADING);
}

/// As many rows as fit. The last page has the notes as well.
std::vector<RowRange> ForestDrawing::Pages(double mostHeight) const
{
    const std::size_t count = forest_.rows.size();
    std::vector<RowRange> pages;
    for (std::size_t first = 0; first < count;) {
        std::size_t end = first + 1;
        while (end < count && DrawRows({first, end + 1}).height <= mostHeight)
            ++end;
        std::size_t kept = end;
        while (kept > first + 1 && !MayCutBefore(kept))
            --kept;
        end = kept > first + 1 ? kept : end;
        pages.push_back({first, end});
        first = end;
    }
    return pages;
}

std::vector<Picture> ForestDrawing::DrawPages(const Picture& whole) const
{
    const double mostHeight = PAGE_SHAPE * whole.width;
    if (whole.height <= mostHeight)
        return {};
    std::vector<Picture> pages;
    for (const RowRange& rows : Pages(mostHeight)) {
        pages.push_back(DrawRows(rows));
        pages.back().height = mostHeight;
    }
    return pages;
}

Picture ForestDrawing::Draw() const
{
    Picture picture = DrawRows({0, forest_.rows.size()});
    picture.cuts = CutsOf(picture);
    picture.pages = DrawPages(picture);
    return picture;
}

} // namespace

Picture DrawForest(const ForestScale& scale, const Forest& forest)
{
    const Forest readable = WithReadableRows(forest);
    return ForestDrawing(scale, readable).Draw();
}

} // namespace host
