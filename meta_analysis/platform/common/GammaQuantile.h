#pragma once

namespace distribution {

/// x with P(X <= x) = p for a gamma variable X with finite shape a > 0 and scale 1, 0 < p <= 1/2; 0 where no
/// double is as small.
double LowerGammaQuantile(double a, double p) noexcept;

/// x with P(X > x) = q, 0 < q <= 1/2; 0 where no double is as small.
double UpperGammaQuantile(double a, double q) noexcept;

} // namespace distribution
