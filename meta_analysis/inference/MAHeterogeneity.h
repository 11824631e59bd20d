#pragma once

#include "meta_analysis/inference/MAHeterogeneityMeasures.h"
#include "meta_analysis/inference/MAPValue.h"

#include <cstddef>

namespace MA_NAMESPACE {

// Measures of heterogeneity after Higgins and Thompson (2002), Statistics in Medicine 21, 1539-1558. Those
// that a function does not compute stay missing.

/// H² = Q / df, never truncated, and I² = max(0, (Q - df) / Q), for df > 0.
MAHeterogeneityMeasures HeterogeneityFromQ(double q, double df);

/// H² = (s² + tau²) / s² and I² = tau² / (s² + tau²), with the typical within-study variance s² > 0.
MAHeterogeneityMeasures HeterogeneityFromTau2(double tau2, double typicalVariance);

/// `HeterogeneityFromQ` with df = k - 1, and intervals from the approximate standard error of ln H;
/// `quantile` is the two-sided normal one. Needs k >= 2. The intervals stay missing when that standard error
/// is not finite (k = 2 with Q <= 2).
MAHeterogeneityMeasures MeasureHeterogeneity(double q, std::size_t k, double quantile);

/// P-value of the homogeneity statistic `q` with `df` degrees of freedom; missing unless q is finite.
MAPValue HomogeneityPValue(double q, int df);

} // namespace MA_NAMESPACE
