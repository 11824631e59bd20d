#pragma once

#include "meta_analysis/pooling/MAHeterogeneityMeasures.h"

#include <cstddef>

namespace MA_NAMESPACE {

/// H² = Q / (k - 1), never truncated, and I² = max(0, (Q - (k - 1)) / Q), with intervals from the
/// approximate standard error of ln H; `quantile` is the two-sided normal one. Needs k >= 2. The intervals
/// stay missing when that standard error is not finite (k = 2 with Q <= 2).
/// Higgins and Thompson (2002), Statistics in Medicine 21, 1539-1558.
MAHeterogeneityMeasures MeasureHeterogeneity(double q, std::size_t k, double quantile);

/// Significance of the homogeneity statistic `q` with `df` degrees of freedom; missing unless q is finite.
double HomogeneitySignificance(double q, int df);

} // namespace MA_NAMESPACE
