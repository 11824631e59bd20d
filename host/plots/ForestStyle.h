#pragma once

#include "host/cli/ForestChoices.h"

#include <vector>

namespace host {

/// What stands beside each other in a forest plot.
enum class ForestPart
{
    LABELS,
    REMARKS,
    COLUMNS, ///< of the file, and figures of the groups
    FRAME,
    EFFECTS,
    WEIGHTS
};

/// How p-values are written.
struct PValueStyle
{
    const char* symbol;
    const char* gap;     ///< about the sign behind it
    double least;        ///< smaller ones are given as below it
    bool hasLeadingZero; ///< "0.03", not ".03"
    bool hasMost;        ///< "> .99" in place of 1
};

/// The figures of a group as a column, or as two.
struct FigureHeaders
{
    const char* joined; ///< over the groups, when both figures stand in one column
    const char* first;
    const char* second; ///< empty for one figure
};

/// The look of a layout. Formats are those of fmt, with names: {name}, {title} (the name in title case),
/// {symbol}, {level}, {method} and {model} of the effect; {q}, {df}, {sub} (df as an index), {p}, {i2},
/// {tau2}, {symbol}, {value} and {which} (the model, where there are two) of tests. A line break ends a line
/// of a header.
struct ForestStyle
{
    std::vector<ForestPart> parts; ///< from left to right
    bool showsFigures;             ///< of the groups, without being asked for
    bool joinsFigures;             ///< "4/123" in one column
    FigureHeaders events, sizes, means;
    const char* timeHeader;
    const char* treatment;
    const char* control;
    const char* labelHeader;
    const char* effectHeader;
    const char* frameHeader;
    const char* axisTitle; ///< empty for none; null for name and scale
    const char* weightHeader;
    const char* percentSign; ///< behind weights
    const char* pooled;      ///< label of a group's model
    const char* overall;
    const char* estimate;       ///< "{}", a blank, and the format of its limits
    const char* signedEstimate; ///< the same, in a column that has negative ones
    const char* heterogeneity;
    const char* heterogeneityOfFixed; ///< without tau²
    const char* effectTest;           ///< empty for none
    const char* groupTest;
    int i2Decimals;
    PValueStyle p;
    const char* favours;    ///< before each label
    bool favoursStandAbove; ///< the frame, not below the axis
    bool notesStandBeside;  ///< the axis, not below it
    bool namesModel;        ///< in the notes
    bool hasOverallLine;    ///< at the pooled effect
    bool hasHeaderRule;
    const char* squareColor;
    const char* insideColor; ///< of an interval that its square covers; null when it lies on the square
    const char* diamondColor;
    const char* nullColor;
    double frameWidth; ///< in pixels
};

const ForestStyle& StyleOf(ForestLayout layout);

} // namespace host
