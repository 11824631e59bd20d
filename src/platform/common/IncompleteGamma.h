#pragma once

namespace distribution {

/// P(X <= x) for a gamma variable X with finite shape a > 0 and scale 1; x >= 0 and finite. Accurate in
/// relative terms down to the smallest probabilities.
double LowerGamma(double a, double x) noexcept;

/// P(X > x), likewise.
double UpperGamma(double a, double x) noexcept;

/// x times the density of X at x: the slope of either probability by log x.
double ScaledGammaDensity(double a, double x) noexcept;

} // namespace distribution
