#include "host/plots/InfluencePictures.h"
#include "host/plots/PlotAxes.h"
#include "host/plots/PointLabels.h"
#include "host/plots/ScatterPlot.h"
#include "host/text/NumberText.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace host {

namespace {

std::vector<LabelledPoint> PointsOf(const InfluenceTable& table)
{
    std::vector<LabelledPoint> points;
    for (std::size_t i = 0; i < table.labels.size(); ++i)
        if (IsNumber(table.baujatX[i]) && IsNumber(table.baujatY[i]))
            points.push_back({{table.baujatX[i], table.baujatY[i]}, table.labels[i]});
    return points;
}

/// The studies farthest from the origin come first: they are what the plot is for.
void SortByDistance(std::vector<LabelledPoint>& points, const Extent& x, const Extent& y)
{
    const auto distance = [&](const LabelledPoint& labelled) {
        return std::max(labelled.point.x / x.Length(), labelled.point.y / y.Length());
    };
    std::stable_sort(points.begin(), points.end(),
                     [&](const auto& a, const auto& b) { return distance(a) > distance(b); });
}

} // namespace

bool HasBaujatPoint(const InfluenceTable& table)
{
    return !PointsOf(table).empty();
}

Picture BaujatPicture(const InfluenceTable& table)
{
    std::vector<LabelledPoint> points = PointsOf(table);
    std::vector<Point> studies;
    studies.reserve(points.size());
    for (const LabelledPoint& labelled : points)
        studies.push_back(labelled.point);
    Extent x;
    Extent y;
    x.Cover(0);
    y.Cover(0);
    x.Cover(studies, &Point::x);
    y.Cover(studies, &Point::y);
    x.Pad(0.06);
    y.Pad(0.06);
    SortByDistance(points, x, y);

    Picture picture = NewScatterPlot({"baujat", "Baujat plot", ""}, 520, 380);
    picture.x = NumberAxis("Part in the heterogeneity (squared Pearson residual)", x);
    picture.y = NumberAxis("Influence on the pooled effect", y);
    if (!table.parameters.empty())
        picture.y.title = "Influence on the fitted value";
    picture.texts = LabelsBeside(points, studies, picture);
    picture.layers = {Dots(std::move(studies), Layer::Kind::DISCS, color::POOLED, "")};
    picture.description = fmt::format(
        "{}: {} by their part in the heterogeneity and by their influence. Those far to the right fit badly, "
        "those far up decide the result.",
        picture.title, CountOfStudies(points.size()));
    return Finished(std::move(picture));
}

} // namespace host
