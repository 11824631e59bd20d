#pragma once

#include "host/draw/Picture.h"
#include "host/plots/PlotAxes.h"
#include "host/plots/ScatterPlot.h"
#include "host/text/NumberFormat.h"

#include <string>
#include <vector>

namespace host {

/// A line over a covariate with its confidence limits, and the prediction limits of a new study's true
/// effect. Values that are missing are not drawn.
struct CovariateLine
{
    std::vector<double> x;
    std::vector<double> effects;
    std::vector<double> lower;
    std::vector<double> upper;
    std::vector<double> predictedLower; ///< empty when they are not asked for
    std::vector<double> predictedUpper;
};

/// The slope of the line with its interval and its test; missing where it has none.
struct CovariateSlope
{
    double intercept; ///< missing without one, and of a line that averages over other predictors
    double slope;
    double lower;
    double upper;
    double significance;
};

/// What the bubble plot of a covariate shows.
struct CovariatePlot
{
    PlotName name;
    std::string covariateTitle; ///< of the axis
    std::string effectName;     ///< "log odds ratio"
    bool hasNoEffect;           ///< whether 0 is the place of no effect
    std::string level;
    NumberFormat numbers;
    std::vector<double> x; ///< of the studies, as the next two
    std::vector<double> effects;
    std::vector<double> weights;
    CovariateLine line;
    CovariateSlope slope;
    std::string description;
};

/// The range of the effects that the plot shows.
Extent EffectExtent(const CovariatePlot& plot);

/// Draws the plot with an axis of effects over `EffectExtent`.
Picture DrawBubbles(const CovariatePlot& plot, Axis effectAxis);

/// A title of an axis that is not longer than the axis.
std::string AxisTitle(const std::string& covariate);

} // namespace host
