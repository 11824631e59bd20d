#include "host/plots/PictureMakers.h"
#include "host/plots/PlotAxes.h"
#include "host/plots/ScatterPlot.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// The library divides the effects of all studies by their standard errors, and those of a group by their
/// variances. In a group, the parallels are no confidence limits.
struct Scale
{
    const char* name;
    std::string parallels;
};

Scale ScaleOf(const AnalysisData& data, const PlotOfGroup& plot)
{
    if (plot.row == 0)
        return {"standard error", data.level + " limits"};
    return {"variance", fmt::format("Line ± {:.2f}", data.base.GetGalbRegrIntercept()[plot.row])};
}

/// The line through the origin, which ends at `end`, and its parallels.
std::vector<Layer> Lines(const AnalysisData& data, const PlotOfGroup& plot, double end)
{
    const double slope = data.base.GetGalbRegrSlope()[plot.row];
    const double offset = data.base.GetGalbRegrIntercept()[plot.row];
    return {
        {Layer::Kind::DASHED_LINE,
         color::INK,
         {{{0, offset}, {end, slope * end + offset}}, {{0, -offset}, {end, slope * end - offset}}},
         {},
         1.2,
         ScaleOf(data, plot).parallels},
        LineBetween({0, 0}, {end, slope * end}, Layer::Kind::LINE, color::ACCENT, "Line through the origin")};
}

Picture GalbraithPlot(const AnalysisData& data, const PlotOfGroup& plot)
{
    const MABaseModel& base = data.base;
    const std::vector<Point> studies =
        DrawablePoints(base.GetGalbPlotX()[plot.row], base.GetGalbPlotY()[plot.row]);
    const double slope = base.GetGalbRegrSlope()[plot.row];
    const double offset = base.GetGalbRegrIntercept()[plot.row];
    const Scale scale = ScaleOf(data, plot);

    Extent x;
    x.Cover(0);
    x.Cover(studies, &Point::x);
    x.Pad(0.05);
    x.StartAt(0);
    const double end = x.Last();
    Extent y;
    y.Cover(studies, &Point::y);
    y.Cover({-offset, offset, slope * end - offset, slope * end + offset});
    y.Pad(0.04);

    Picture picture = NewScatterPlot(NameOfGroupPlot({"galbraith", "Galbraith plot", ""}, plot));
    picture.x = NumberAxis(fmt::format("1 / {}", scale.name), x);
    picture.y = NumberAxis(fmt::format("{} / {}", Capitalised(data.measure.AnalysisName()), scale.name), y);
    if (data.measure.hasNoEffect)
        picture.layers.push_back(NullLine({0, 0}, {end, 0}));
    for (Layer& layer : Lines(data, plot, end))
        picture.layers.push_back(std::move(layer));
    picture.layers.push_back(StudyDots(studies));
    picture.description = fmt::format(
        "{}: {} by effect and precision, each divided by the {}; a line through the origin of slope "
        "{:.2f} and its two parallels at a distance of {:.2f}.",
        picture.title, CountOfStudies(studies.size()), scale.name, slope, offset);
    return Finished(std::move(picture));
}

} // namespace

std::vector<Picture> GalbraithPictures(const AnalysisData& data)
{
    std::vector<Picture> pictures;
    for (const PlotOfGroup& plot : AllAndGroups(data, data.base.GetGalbPlotX().size()))
        pictures.push_back(GalbraithPlot(data, plot));
    return pictures;
}

} // namespace host
