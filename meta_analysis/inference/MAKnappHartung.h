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

/// Whether that adjustment is made where it goes by heterogeneity: with more than one residual degree of
/// freedom, which are k - 1 for one mean, and tau² > 0. Otherwise the factor, which is then small by chance,
/// would shorten the interval too much.
inline bool IsHeterogeneous(double residualDf, double tau2) noexcept
{
    return residualDf > 1.0 && tau2 > 0.0;
}

} // namespace MA_NAMESPACE
