#include "meta_analysis/analysis/steps/MAGalbraithPlot.h"

#include "meta_analysis/inference/MATestPValues.h"

#include <cstddef>

namespace MA_NAMESPACE {

MAGalbraithPlot PlotGalbraith(const std::vector<double>& effectSizes, const std::vector<double>& scale,
                              double alpha)
{
    MAGalbraithPlot plot;
    plot.x.reserve(effectSizes.size());
    plot.y.reserve(effectSizes.size());
    double sumXY = 0.0;
    double sumXX = 0.0;
    for (std::size_t i = 0; i < effectSizes.size(); ++i) {
        plot.x.push_back(1.0 / scale[i]);
        plot.y.push_back(effectSizes[i] / scale[i]);
        sumXY += plot.x[i] * plot.y[i];
        sumXX += plot.x[i] * plot.x[i];
    }
    plot.slope = sumXY / sumXX;
    plot.criticalValue = TwoSidedNormalQuantile(alpha);
    return plot;
}

} // namespace MA_NAMESPACE
