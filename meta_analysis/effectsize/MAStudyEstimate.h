#pragma once

#include "meta_analysis/inference/MAInference.h"

namespace MA_NAMESPACE {

/// A study's own effect with its standard error, interval and z test against 0. Where the variance is missing
/// the interval is too; z is then missing by missing, which is 1, as hosts know it.
inline MAEstimate EstimateOfStudy(double effect, double variance, double quantile) noexcept
{
    if (!KXMV::IsMissing(variance))
        return InferNormal(effect, variance, 0.0, quantile);
    MAEstimate undefined;
    undefined.statistic = undefined.estimate / undefined.stdError;
    undefined.pValue = TwoSidedNormalPValue(undefined.statistic);
    return undefined;
}

} // namespace MA_NAMESPACE
