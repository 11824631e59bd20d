#pragma once

#include <cmath>
#include <limits>

/// The level of a factor that a data value stands for: the nearest integer, halves upwards.
///
/// -1, which is no level, for a negative or missing value, a NaN, and a value beyond int.
inline int FactorLevel(double value) noexcept
{
    constexpr double limit = std::numeric_limits<int>::max();
    return value >= 0.0 && value < limit ? static_cast<int>(std::floor(value + 0.5)) : -1;
}
