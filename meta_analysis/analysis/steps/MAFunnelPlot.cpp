#include "meta_analysis/analysis/steps/MAFunnelPlot.h"

#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/platform/common/KXDistFun.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace MA_NAMESPACE {

namespace {

/// Vertical coordinate of a study; 0 for a type outside the enumeration.
double HeightOf(double variance, MAConst::FunnelYType type)
{
    switch (type) {
    case MAConst::FUNNEL_STD_ERROR:
        return std::sqrt(variance);
    case MAConst::FUNNEL_PRECISION:
        return 1.0 / std::sqrt(variance);
    case MAConst::FUNNEL_VARIANCE:
        return variance;
    case MAConst::FUNNEL_INVERSE_VARIANCE:
        return 1.0 / variance;
    }
    return 0.0;
}

/// The standard error that belongs to a vertical coordinate.
double StdErrorAt(double height, MAConst::FunnelYType type)
{
    switch (type) {
    case MAConst::FUNNEL_STD_ERROR:
        return height;
    case MAConst::FUNNEL_PRECISION:
        return 1.0 / height;
    case MAConst::FUNNEL_VARIANCE:
        return std::sqrt(height);
    case MAConst::FUNNEL_INVERSE_VARIANCE:
        return 1.0 / std::sqrt(height);
    }
    return 0.0;
}

double SmallestHeight(const std::vector<double>& heights)
{
    return std::accumulate(heights.begin(), heights.end(), std::numeric_limits<double>::max(),
                           [](double a, double b) { return std::min(a, b); });
}

void DrawLine(double centre, const MAFunnelChoice& choice, MAFunnelPlot& plot)
{
    const bool isInverted =
        choice.yType == MAConst::FUNNEL_PRECISION || choice.yType == MAConst::FUNNEL_INVERSE_VARIANCE;
    const double z = TwoSidedNormalQuantile(choice.alpha);
    const double start = isInverted ? SmallestHeight(plot.y) : 0.0;
    const double step = (plot.yMax - start) / (choice.linePointCount - 1.0);
    plot.lineX.reserve(static_cast<std::size_t>(std::max(choice.linePointCount, 0)));
    plot.lineY.reserve(plot.lineX.capacity());
    for (int k = 0; k < choice.linePointCount; ++k) {
        const double height = k * step + start;
        const double stdError = StdErrorAt(height, choice.yType);
        if (!std::isinf(stdError)) {
            plot.lineX.push_back(centre + z * stdError);
            plot.lineY.push_back(height);
        }
    }
}

/// Normal quantile by which the largest coordinate, whatever the axis, is multiplied.
double ContourQuantile(double level, MAConst::FunnelConTourTesType type)
{
    switch (type) {
    case MAConst::CONTOUR_TWO_SIDED:
        return KXDistFun::IdfStdNorm(1.0 - level * 0.5);
    case MAConst::CONTOUR_UPPER:
        return KXDistFun::IdfStdNorm(1.0 - level);
    case MAConst::CONTOUR_LOWER:
        return KXDistFun::IdfStdNorm(level);
    case MAConst::CONTOUR_NONE:
        break;
    }
    return 0.0;
}

} // namespace

MAFunnelChoice FunnelChoiceOf(const MAModelSettings& settings, double alpha)
{
    return {settings.GetFunnelYType(), settings.GetFunnelNPoints(), settings.GetFunnelConTourTesType(),
            settings.GetFunnelConTourCutoff(), alpha};
}

std::vector<double> FunnelHeights(const std::vector<double>& variances, MAConst::FunnelYType type)
{
    std::vector<double> heights;
    heights.reserve(variances.size());
    for (const double variance : variances)
        heights.push_back(HeightOf(variance, type));
    return heights;
}

double LargestHeight(const std::vector<double>& heights)
{
    return std::accumulate(heights.begin(), heights.end(), 0.0,
                           [](double a, double b) { return std::max(a, b); });
}

MAFunnelPlot PlotFunnel(std::vector<double> effectSizes, const std::vector<double>& variances, double centre,
                        const MAFunnelChoice& choice)
{
    MAFunnelPlot plot;
    plot.x = std::move(effectSizes);
    plot.y = FunnelHeights(variances, choice.yType);
    plot.yMax = LargestHeight(plot.y);
    DrawLine(centre, choice, plot);
    if (choice.contours != MAConst::CONTOUR_NONE) {
        for (const double level : choice.contourLevels)
            plot.contours.push_back(ContourQuantile(level, choice.contours) * plot.yMax);
    }
    return plot;
}

} // namespace MA_NAMESPACE
