#pragma once

#include "host/draw/Picture.h"
#include "host/plots/ScatterPlot.h"

#include <string>
#include <vector>

namespace host {

/// A line through the origin, by its slope.
struct LineThroughOrigin
{
    double slope;
    Layer::Kind kind;
    const char* color;
    std::string legend;
};

/// What a Galbraith plot shows: 1 / s and y / s of each study of effect y and standard error s. A study lies
/// on the ray from the origin whose slope is its effect. The limits are parallels of the first line at the
/// critical value, within which studies lie that do not differ from it. Galbraith (1988), Statistics in
/// Medicine 7, 889-894.
struct GalbraithPlot
{
    PlotName name;
    std::vector<Point> studies;
    std::vector<LineThroughOrigin> lines;
    double criticalValue;
    std::string limits; ///< their legend
    std::string xTitle;
    std::string yTitle;
    bool hasNullLine;
    std::string description;
};

Picture DrawGalbraith(GalbraithPlot plot);

} // namespace host
