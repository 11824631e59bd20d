#pragma once

#include <vector>

namespace MA_NAMESPACE {

/// Coordinates of a Galbraith plot: 1 / s and y / s of each study of effect size y and scale s.
struct MAGalbraithPlot
{
    std::vector<double> x;
    std::vector<double> y;
    double slope;         ///< of the line through the origin
    double criticalValue; ///< by which the two parallels to that line are offset
};

/// Galbraith (1988), Statistics in Medicine 7, 889-894. `alpha` is 1 - confidence level.
MAGalbraithPlot PlotGalbraith(const std::vector<double>& effectSizes, const std::vector<double>& scale,
                              double alpha);

} // namespace MA_NAMESPACE
