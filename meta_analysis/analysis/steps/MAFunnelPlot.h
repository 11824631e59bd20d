#pragma once

#include "meta_analysis/settings/MAModelSettings.h"

#include <span>
#include <vector>

namespace MA_NAMESPACE {

/// The choices of a funnel plot.
struct MAFunnelChoice
{
    MAConst::FunnelYType yType;
    int linePointCount;
    MAConst::FunnelConTourTesType contours;
    std::span<const double> contourLevels; ///< of the settings
    double alpha;                          ///< 1 - confidence level
};
MAFunnelChoice FunnelChoiceOf(const MAModelSettings& settings, double alpha);

/// Vertical coordinates of studies, by their variances.
std::vector<double> FunnelHeights(const std::vector<double>& variances, MAConst::FunnelYType type);

/// Coordinates of a funnel plot.
struct MAFunnelPlot
{
    std::vector<double> x; ///< effect sizes of the studies
    std::vector<double> y;
    double yMax;               ///< the largest y, 0 without one
    std::vector<double> lineX; ///< the confidence line on the upper side of the centre
    std::vector<double> lineY;
    std::vector<double> contours; ///< horizontal extent of each contour level at `yMax`
};

/// The plot of effect sizes and their variances about a centre. The line goes from the origin (or, on an
/// inverted axis, from the smallest coordinate) to the largest coordinate. A single point divides by zero and
/// becomes a NaN.
MAFunnelPlot PlotFunnel(std::vector<double> effectSizes, const std::vector<double>& variances, double centre,
                        const MAFunnelChoice& choice);

/// The largest of vertical coordinates, which are no less than 0; 0 without one.
double LargestHeight(const std::vector<double>& heights);

} // namespace MA_NAMESPACE
