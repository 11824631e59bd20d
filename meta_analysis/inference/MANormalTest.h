#pragma once

#include "meta_analysis/inference/MATestPValues.h"

#include <cmath>

namespace MA_NAMESPACE {

/// Two-sided z test of an estimate, and its confidence interval.
struct MANormalInference
{
    double stdError;
    double zValue;
    MAPValue pValue;
    double ciLower;
    double ciUpper;
};

inline MANormalInference InferNormal(double estimate, double variance, double nullValue,
                                     double quantile) noexcept
{
    const double stdError = std::sqrt(variance);
    const double z = (estimate - nullValue) / stdError;
    const double halfWidth = quantile * stdError;
    return {stdError, z, TwoSidedNormalPValue(z), estimate - halfWidth, estimate + halfWidth};
}

} // namespace MA_NAMESPACE
