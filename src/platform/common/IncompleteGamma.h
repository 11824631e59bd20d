#pragma once

namespace distribution {

/// P(X <= x) for a gamma variable X with shape a > 0 and scale 1; x >= 0. Both may be infinite, not together.
double LowerGamma(double a, double x) noexcept;

/// P(X > x) for the same variable, accurate in relative terms where it is small.
double UpperGamma(double a, double x) noexcept;

} // namespace distribution
