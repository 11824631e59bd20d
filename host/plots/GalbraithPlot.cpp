#include "host/plots/GalbraithDrawing.h"
#include "host/plots/PictureMakers.h"
#include "host/text/NumberText.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// The studies of a plot in Galbraith's coordinates, and the slope of their line through the origin, which is
/// the fixed-effect estimate. The library's own coordinates of a group are others: they are divided by the
/// variances, so that their parallels are no limits.
struct RadialStudies
{
    std::vector<Point> points;
    double slope;
};

RadialStudies RadialStudiesOf(const AnalysisData& data, const PlotOfGroup& plot)
{
    const std::vector<double> effects = data.base.GetEffectSize();
    const std::vector<double> stdErrors = data.base.GetStdError();
    RadialStudies radial = {{}, 0};
    double products = 0;
    double squares = 0;
    for (const std::size_t study : StudiesOf(data, plot)) {
        const Point point = {1 / stdErrors[study], effects[study] / stdErrors[study]};
        if (!IsNumber(effects[study]) || !IsNumber(point.x) || !IsNumber(point.y))
            continue;
        radial.points.push_back(point);
        products += point.x * point.y;
        squares += point.x * point.x;
    }
    radial.slope = products / squares;
    return radial;
}

std::string DescriptionOf(const AnalysisData& data, const GalbraithPlot& plot, double critical)
{
    return fmt::format(
        "{}: {} by the {} and the precision, each divided by the standard error; a line through "
        "the origin of slope {}, the fixed-effect estimate, and {} limits at a distance of {:.2f}.",
        plot.name.title, CountOfStudies(plot.studies.size()), data.measure.AnalysisName(),
        WithMinusSign(data.numbers(plot.lines.front().slope)), data.level, critical);
}

Picture PictureOf(const AnalysisData& data, const PlotOfGroup& group, RadialStudies radial)
{
    const double critical = data.base.GetGalbRegrIntercept()[group.row];
    GalbraithPlot plot = {
        .name = NameOfGroupPlot({"galbraith", "Galbraith plot", ""}, group),
        .studies = std::move(radial.points),
        .lines = {{radial.slope, Layer::Kind::LINE, color::ACCENT, "Fixed-effect estimate"}},
        .criticalValue = critical,
        .limits = data.level + " limits of a study",
        .xTitle = "1 / standard error",
        .yTitle = Capitalised(data.measure.AnalysisName()) + " / standard error",
        .hasNullLine = data.measure.hasNoEffect,
        .description = {}};
    if (IsRandom(data.settings) && IsNumber(group.estimate))
        plot.lines.push_back(
            {group.estimate, Layer::Kind::DOTTED_LINE, color::POOLED, "Random-effects estimate"});
    plot.description = DescriptionOf(data, plot, critical);
    return DrawGalbraith(std::move(plot));
}

} // namespace

std::vector<Picture> GalbraithPictures(const AnalysisData& data)
{
    std::vector<Picture> pictures;
    for (const PlotOfGroup& group : AllAndGroups(data, data.base.GetGalbPlotX().size()))
        if (RadialStudies radial = RadialStudiesOf(data, group); IsNumber(radial.slope))
            pictures.push_back(PictureOf(data, group, std::move(radial)));
    return pictures;
}

} // namespace host
