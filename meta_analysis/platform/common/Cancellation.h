#pragma once

#include <cmath>

/// What a difference must keep of the number that it is taken from, to have digits enough.
constexpr double smallestShare = 1.0 / 32.0;

/// Whether it does. A NaN keeps nothing, and nothing keeps a share of infinity.
inline bool Keeps(double difference, double from)
{
    return std::isfinite(from) && difference >= smallestShare * from;
}
