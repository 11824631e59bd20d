#pragma once

#include "meta_analysis/inference/MAEstimate.h"
#include "meta_analysis/inference/MATestPValues.h"

#include <cmath>

namespace MA_NAMESPACE {

/// The estimate with the statistic (estimate - nullValue) / stdError, without p-value and interval.
inline MAEstimate EstimateWithStatistic(double estimate, double variance, double nullValue) noexcept
{
    MAEstimate result;
    result.estimate = estimate;
    result.variance = variance;
    result.stdError = std::sqrt(variance);
    result.statistic = (estimate - nullValue) / result.stdError;
    return result;
}

inline void SetInterval(MAEstimate& result, double quantile) noexcept
{
    const double halfWidth = quantile * result.stdError;
    result.ciLower = result.estimate - halfWidth;
    result.ciUpper = result.estimate + halfWidth;
}

/// Two-sided z test of an estimate, and its confidence interval; `quantile` is the two-sided normal one.
inline MAEstimate InferNormal(double estimate, double variance, double nullValue, double quantile) noexcept
{
    MAEstimate result = EstimateWithStatistic(estimate, variance, nullValue);
    result.pValue = TwoSidedNormalPValue(result.statistic);
    SetInterval(result, quantile);
    return result;
}

} // namespace MA_NAMESPACE
