#include "host/plots/ForestPlaces.h"

#include "host/text/PlainText.h"

#include <fmt/format.h>

#include <algorithm>

namespace host {

namespace {

using Align = PictureText::Align;
using Kind = ForestRow::Kind;

constexpr double LEAST_NOTE_WIDTH = 250; // left of the frame, when notes stand there
constexpr double LEAST_FRAME_WIDTH = 220;
constexpr double GREATEST_FRAME_WIDTH = 700;
constexpr double GROUP_HEADER = 20; // its height with the rule below it
constexpr double BELOW_HEADER = 17;

bool IsBold(Kind kind)
{
    return kind == Kind::HEADING || kind == Kind::POOLED;
}

std::vector<std::string> LinesOf(const std::string& text)
{
    std::vector<std::string> lines;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

double WidthOf(const std::vector<std::string>& lines, bool isBold)
{
    double width = 0;
    for (const std::string& line : lines)
        width = std::max(width, FONT_SIZE * TextWidth(line, isBold));
    return width;
}

/// Wraps long texts, and measures.
PlacedColumn Placed(const ForestColumn& column, const Forest& forest)
{
    PlacedColumn placed = {.column = column, .header = LinesOf(column.header), .lines = {}};
    if (column.longest > 0 && placed.header.size() == 1)
        placed.header = WrappedText(column.header, column.longest);
    placed.width = WidthOf(placed.header, true);
    for (std::size_t row = 0; row < column.texts.size(); ++row) {
        const std::string& text = column.texts[row];
        placed.lines.push_back(column.longest > 0 ? WrappedText(text, column.longest)
                                                  : std::vector<std::string>{text});
        placed.width = std::max(placed.width, WidthOf(placed.lines.back(), IsBold(forest.rows[row].kind)));
    }
    return placed;
}

/// Widens neighbours of one group until their common header fits.
void FitGroupHeaders(std::vector<PlacedColumn>& columns)
{
    for (std::size_t first = 0; first < columns.size();) {
        const std::string& header = columns[first].column.groupHeader;
        std::size_t end = first;
        double width = -FOREST_COLUMN_GAP;
        for (; end < columns.size() && columns[end].column.groupHeader == header; ++end)
            width += columns[end].width + FOREST_COLUMN_GAP;
        const double lack = FONT_SIZE * TextWidth(header, true) - width;
        for (std::size_t i = first; i < end && lack > 0 && !header.empty(); ++i)
            columns[i].width += lack / static_cast<double>(end - first);
        first = end;
    }
}

bool HasNotesBesideFrame(const ForestScale& scale, const Forest& forest)
{
    return (scale.style->notesStandBeside && !forest.notes.empty()) ||
           std::any_of(forest.rows.begin(), forest.rows.end(),
                       [](const ForestRow& row) { return row.kind == Kind::NOTE; });
}

/// Returns the right end of the last column.
double SetLefts(ForestPlaces& places)
{
    double left = PICTURE_MARGIN;
    for (PlacedColumn& column : places.columns) {
        column.left = left;
        left += column.width + FOREST_COLUMN_GAP;
    }
    return left - FOREST_COLUMN_GAP;
}

/// The frame takes what a wanted width leaves to it, so that texts keep their size.
void FitFrame(ForestPlaces& places, const ForestScale& scale)
{
    PlacedColumn& frame = places.columns[places.frame];
    const auto& size = scale.request.options.size;
    if (size)
        frame.width += size->width - (SetLefts(places) + PICTURE_MARGIN);
    const double least = std::max(LEAST_FRAME_WIDTH, WidthOf(frame.header, true));
    frame.width = std::clamp(frame.width, least, std::max(least, GREATEST_FRAME_WIDTH));
}

void PlaceColumns(ForestPlaces& places, const ForestScale& scale, const Forest& forest)
{
    for (const ForestColumn& column : ForestColumns(scale, forest)) {
        if (column.isFrame)
            places.frame = places.columns.size();
        places.columns.push_back(Placed(column, forest));
    }
    places.columns[places.frame].width = scale.style->frameWidth;
    FitGroupHeaders(places.columns);
    SetLefts(places);
    if (HasNotesBesideFrame(scale, forest))
        places.columns.front().width += std::max(0.0, LEAST_NOTE_WIDTH - places.NoteWidth());
    FitFrame(places, scale);
    places.width = SetLefts(places) + PICTURE_MARGIN;
}

void PlaceRows(ForestPlaces& places, const Forest& forest)
{
    for (std::size_t row = 0; row < forest.rows.size(); ++row) {
        PlacedRow placed = {};
        if (forest.rows[row].kind == Kind::NOTE)
            placed.note = WrappedText(forest.rows[row].label, places.NoteWidth() / FONT_SIZE);
        std::size_t lines = std::max<std::size_t>(1, placed.note.size());
        for (const PlacedColumn& column : places.columns)
            if (!column.lines.empty())
                lines = std::max(lines, column.lines[row].size());
        placed.height = FOREST_ROW + FOREST_LINE * static_cast<double>(lines - 1);
        places.rows.push_back(std::move(placed));
    }
}

/// Favours labels may stand above the frame, as its header.
void SetFrameHeader(ForestPlaces& places, const ForestScale& scale)
{
    const auto& favours = scale.request.options.favours;
    if (!favours || !scale.style->favoursStandAbove)
        return;
    const double half = places.Frame().width / 2;
    const std::size_t lines = std::max(FavoursLines(scale, favours->first, half).size(),
                                       FavoursLines(scale, favours->second, half).size());
    places.columns[places.frame].header.assign(lines, "");
}

double HeaderHeight(const ForestPlaces& places)
{
    std::size_t lines = 1;
    bool hasGroups = false;
    for (const PlacedColumn& column : places.columns) {
        lines = std::max(lines, column.header.size());
        hasGroups = hasGroups || !column.column.groupHeader.empty();
    }
    return FOREST_LINE * static_cast<double>(lines) + (hasGroups ? GROUP_HEADER : 0) + BELOW_HEADER;
}

} // namespace

double PlacedColumn::TextsAt() const
{
    switch (column.align) {
    case Align::LEFT:
        return left;
    case Align::RIGHT:
        return left + width;
    case Align::CENTER:
        return left + width / 2;
    }
    return left;
}

ForestPlaces PlacesOf(const ForestScale& scale, const Forest& forest)
{
    ForestPlaces places = {};
    PlaceColumns(places, scale, forest);
    PlaceRows(places, forest);
    SetFrameHeader(places, scale);
    const std::string& title = scale.request.options.title;
    if (!title.empty())
        places.title = WrappedText(LabelText(title), (places.width - 2 * PICTURE_MARGIN) / FONT_SIZE / 1.12);
    const double titleHeight =
        places.title.empty() ? 0 : FOREST_LINE * static_cast<double>(places.title.size()) + 6;
    places.frameTop = PICTURE_MARGIN + titleHeight + HeaderHeight(places);
    return places;
}

std::vector<std::string> FavoursLines(const ForestScale& scale, const std::string& label, double width)
{
    if (label.empty())
        return {};
    const bool saysSo = label.starts_with("Favo") || label.starts_with("favo");
    return WrappedText(saysSo ? label : fmt::format("{} {}", scale.style->favours, label), width / FONT_SIZE);
}

} // namespace host
