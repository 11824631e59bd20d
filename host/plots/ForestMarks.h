#pragma once

#include "host/draw/Picture.h"
#include "host/plots/ForestDrawing.h"

#include <vector>

namespace host {

/// A row of a forest plot and the height at which its interval is drawn.
struct ForestMark
{
    const ForestRow* row;
    double y; ///< on the upright axis, in pixels from the top of the frame
};

/// The ranges of a forest plot's axes.
struct ForestAxes
{
    Axis x;
    Axis y;
    double frameWidth; ///< in pixels, as the upright axis is

    double XPerPixel() const { return (x.last - x.first) / frameWidth; }
    bool HasNullLine(const Measure& measure) const
    {
        return measure.hasNoEffect && x.first <= 0 && x.last >= 0;
    }
};

/// Lines, squares, intervals and diamonds of these rows, which may be some of the forest's.
std::vector<Layer> ForestLayers(const ForestScale& scale, const Forest& forest, const ForestAxes& axes,
                                const std::vector<ForestMark>& marks);

} // namespace host
