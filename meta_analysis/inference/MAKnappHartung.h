#pragma once

#include <algorithm>

namespace MA_NAMESPACE {

/// The factor by which the adjustment after Knapp and Hartung (2003, Statistics in Medicine 22, 2693-2710)
/// scales a variance: the weighted residual sum over its degrees of freedom, df > 0. Truncated, it narrows no
/// interval.
inline double KnappHartungFactor(double weightedResidualSum, double df, bool truncated) noexcept
{
    const double factor = weightedResidualSum / df;
    return truncated ? std::max(factor, 1.0) : factor;
}

} // namespace MA_NAMESPACE
