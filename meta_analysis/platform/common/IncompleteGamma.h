#pragma once

#include "meta_analysis/platform/common/Tails.h"

namespace distribution {

/// P(X <= x) and P(X > x) for a gamma variable X with finite shape a > 0 and scale 1; x >= 0 and finite.
/// Accurate in relative terms down to the smallest probabilities.
Tails GammaTails(double a, double x) noexcept;

/// x times the density of that variable, x^a e^-x / Gamma(a).
double ScaledGammaDensity(double a, double x) noexcept;

} // namespace distribution
