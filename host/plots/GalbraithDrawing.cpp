#include "host/plots/GalbraithDrawing.h"

#include "host/plots/PlotAxes.h"

#include <utility>

namespace host {

namespace {

Layer Limits(const GalbraithPlot& plot, double end)
{
    const double height = plot.lines.front().slope * end;
    const double offset = plot.criticalValue;
    return {Layer::Kind::DASHED_LINE,
            color::INK,
            {{{0, offset}, {end, height + offset}}, {{0, -offset}, {end, height - offset}}},
            {},
            1.2,
            plot.limits};
}

Layer Band(const Layer& limits)
{
    std::vector<Point> outline = limits.pieces.front();
    outline.insert(outline.end(), limits.pieces.back().rbegin(), limits.pieces.back().rend());
    return {Layer::Kind::AREA, color::BAND, {std::move(outline)}};
}

Extent HorizontalExtent(const GalbraithPlot& plot)
{
    Extent x;
    x.Cover(0);
    x.Cover(plot.studies, &Point::x);
    x.Pad(0.05);
    x.StartAt(0);
    return x;
}

/// Another line than the first may leave the frame.
Extent VerticalExtent(const GalbraithPlot& plot, double end)
{
    Extent y;
    y.Cover(plot.studies, &Point::y);
    y.Cover({-plot.criticalValue, plot.criticalValue});
    const double height = plot.lines.front().slope * end;
    y.Cover({height - plot.criticalValue, height + plot.criticalValue});
    y.Pad(0.04);
    return y;
}

} // namespace

Picture DrawGalbraith(GalbraithPlot plot)
{
    const Extent x = HorizontalExtent(plot);
    const double end = x.Last();
    Picture picture = NewScatterPlot(plot.name);
    picture.x = NumberAxis(plot.xTitle, x);
    picture.y = NumberAxis(plot.yTitle, VerticalExtent(plot, end));
    Layer limits = Limits(plot, end);
    picture.layers.push_back(Band(limits));
    if (plot.hasNullLine)
        picture.layers.push_back(NullLine({0, 0}, {end, 0}));
    picture.layers.push_back(std::move(limits));
    for (const LineThroughOrigin& line : plot.lines)
        picture.layers.push_back(
            LineBetween({0, 0}, {end, line.slope * end}, line.kind, line.color, line.legend));
    picture.layers.push_back(StudyDots(std::move(plot.studies)));
    picture.description = plot.description;
    return Finished(std::move(picture));
}

} // namespace host
