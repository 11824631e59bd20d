#pragma once

namespace distribution {

/// z with P(Z <= z) = p for a standard normal Z and 0 < p < 1.
double NormalQuantile(double p) noexcept;

} // namespace distribution
