#pragma once

#include "host/draw/Picture.h"
#include "host/plots/PlotAxes.h"

#include <vector>

namespace host {

/// An estimate and the distribution of its test: Student's t, or the normal distribution when the degrees of
/// freedom are infinite.
struct TestedEstimate
{
    double estimate;
    double stdError;
    double df;

    /// Whether there is a test: all are numbers, and the standard error and the degrees of freedom positive.
    bool HasTest() const;
};

/// Two-sided p-value of the hypothesis that the true effect is `effect`: 2 P(T > |estimate - effect| / s).
double PValueOf(const TestedEstimate& tested, double effect);

/// The p-value over the hypothetical effect, from the left end of the axis to its right. The points where it
/// crosses `alpha`, the limits of the interval of that level, are among those of the line. `step` is the
/// distance of the points about the estimate, in standard errors.
std::vector<Point> PValueCurve(const TestedEstimate& tested, const Extent& effects, double alpha,
                               double step);

} // namespace host
