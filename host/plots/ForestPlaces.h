#pragma once

#include "host/plots/ForestColumns.h"
#include "host/plots/ForestDrawing.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

inline constexpr double FOREST_LINE = 15;       ///< height of a line of text, in pixels
inline constexpr double FOREST_ROW = 19;        ///< of a row of one line
inline constexpr double FOREST_COLUMN_GAP = 18; ///< between columns

/// A column, in pixels from the left of the picture.
struct PlacedColumn
{
    ForestColumn column;
    std::vector<std::string> header;             ///< its lines
    std::vector<std::vector<std::string>> lines; ///< of each row
    double left = 0;
    double width = 0;

    double Right() const { return left + width; }
    double TextsAt() const;
};

struct PlacedRow
{
    std::vector<std::string> note; ///< its lines, which stand over the columns left of the frame
    double height;
};

/// Where everything of a forest plot stands, but for what is below the frame.
struct ForestPlaces
{
    std::vector<PlacedColumn> columns;
    std::vector<PlacedRow> rows;
    std::vector<std::string> title; ///< its lines
    double frameTop;
    double width;      ///< of the picture
    std::size_t frame; ///< which column it is

    const PlacedColumn& Frame() const { return columns[frame]; }
    /// Of the texts that stand over the columns left of the frame.
    double NoteWidth() const { return columns[frame].left - FOREST_COLUMN_GAP - PICTURE_MARGIN; }
};

ForestPlaces PlacesOf(const ForestScale& scale, const Forest& forest);

/// The label of --favours for a side of the frame, in lines that fit a width.
std::vector<std::string> FavoursLines(const ForestScale& scale, const std::string& label, double width);

} // namespace host
