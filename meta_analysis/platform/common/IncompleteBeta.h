#pragma once

#include "meta_analysis/platform/common/Tails.h"

namespace distribution {

/// A beta distribution and a point of it. The parts depend on each other. The struct holds all of them
/// because each is known to full relative precision only where the point is formed.
struct BetaPoint
{
    double a;      ///< first parameter, > 0
    double b;      ///< second parameter, > 0
    double x;      ///< the point, in [0, 1]
    double y;      ///< 1 - x
    double excess; ///< a y - b x: positive below the mean a / (a + b)
};

/// P(X <= x) and P(X > x), for finite parameters.
Tails BetaTails(const BetaPoint& point) noexcept;

/// P(X <= x) B(a, b) / (x^a y^b), by a continued fraction. It is fast for x below the mean, and elsewhere as
/// long as x is not near 1.
double BetaFraction(const BetaPoint& point) noexcept;

} // namespace distribution
