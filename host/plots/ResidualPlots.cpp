#include "host/plots/ResidualPlots.h"

#include "host/plots/GalbraithDrawing.h"
#include "host/plots/PlotAxes.h"
#include "host/plots/ScatterPlot.h"
#include "host/text/Wording.h"

#include "meta_analysis/platform/common/KXDistFun.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// A study's effect less its fitted value; its standard deviation about the line, the root of 1 / weight, of
/// which tau² is part under random effects; and its standard error, that deviation times √(1 - leverage),
/// because the line comes nearer to the study (Cook and Weisberg 1982, Residuals and Influence in
/// Regression).
struct Residual
{
    double value;
    double stdDev;
    double stdError;
};

double CriticalValue(const RegressionData& data)
{
    return KXDistFun::IdfStdNorm(1 - AlphaOf(data.options.settings) / 2);
}

std::vector<Residual> ResidualsOf(const RegressionData& data)
{
    std::vector<Residual> residuals;
    for (const MARegForestRow& study : data.analysis.forest) {
        const std::optional<Score>& score = data.analysis.scores[static_cast<std::size_t>(study.record)];
        const double leverage = score && IsNumber(score->leverage) ? score->leverage : 0;
        const double stdDev = 1 / std::sqrt(study.weight);
        const Residual residual = {study.effect - study.fit, stdDev,
                                   stdDev * std::sqrt(std::max(0.0, 1 - leverage))};
        if (IsNumber(study.fit) && IsNumber(residual.value) && IsNumber(residual.stdDev))
            residuals.push_back(residual);
    }
    return residuals;
}

std::string NameOfResidual(const RegressionData& data)
{
    return fmt::format("Residual ({} less fitted value)", data.measure.AnalysisName());
}

Picture FunnelPicture(const RegressionData& data, const std::vector<Residual>& residuals)
{
    std::vector<Point> studies;
    studies.reserve(residuals.size());
    for (const Residual& residual : residuals)
        studies.push_back({residual.value, residual.stdError});
    Extent y;
    y.Cover(studies, &Point::y);
    y.Pad(0.05);
    y.StartAt(0);
    const double reach = CriticalValue(data) * y.Last();
    Extent x;
    x.Cover(studies, &Point::x);
    x.Cover({-reach, reach});
    x.Pad(0.04);

    Picture picture = NewScatterPlot({"residual-funnel", "Funnel plot of residuals", ""});
    picture.x = NumberAxis(NameOfResidual(data), x);
    picture.y = NumberAxis("Standard error of the residual", y);
    std::swap(picture.y.first, picture.y.last);
    picture.layers = {{Layer::Kind::DASHED_LINE,
                       color::INK,
                       {{{0, 0}, {reach, y.Last()}}, {{0, 0}, {-reach, y.Last()}}},
                       {},
                       1.2,
                       data.level + " limits of a study"},
                      LineBetween({0, 0}, {0, y.Last()}, Layer::Kind::LINE, color::ACCENT, "Fitted value"),
                      StudyDots(studies)};
    picture.description =
        fmt::format("{}: {} by residual and its standard error; {} limits of a study about its fitted value.",
                    picture.title, CountOfStudies(studies.size()), data.level);
    return Finished(std::move(picture));
}

Picture GalbraithPicture(const RegressionData& data, const std::vector<Residual>& residuals)
{
    const char* const stdDev = data.isRandom ? "√(variance + tau²)" : "standard error";
    GalbraithPlot plot = {.name = {"residual-galbraith", "Galbraith plot of residuals", ""},
                          .studies = {},
                          .lines = {{0, Layer::Kind::LINE, color::ACCENT, "Fitted value"}},
                          .criticalValue = CriticalValue(data),
                          .limits = data.level + " limits of a study",
                          .xTitle = fmt::format("1 / {}", stdDev),
                          .yTitle = fmt::format("Residual / {}", stdDev),
                          .hasNullLine = false,
                          .description = {}};
    for (const Residual& residual : residuals)
        plot.studies.push_back({1 / residual.stdDev, residual.value / residual.stdDev});
    plot.description = fmt::format("{}: {} by residual and precision, each divided by {}, with {} limits.",
                                   plot.name.title, CountOfStudies(residuals.size()), stdDev, data.level);
    return DrawGalbraith(std::move(plot));
}

} // namespace

std::vector<Picture> ResidualPictures(const RegressionData& data)
{
    const std::vector<Residual> residuals = ResidualsOf(data);
    if (residuals.size() < 2)
        return {};
    return {FunnelPicture(data, residuals), GalbraithPicture(data, residuals)};
}

} // namespace host
