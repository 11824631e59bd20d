#pragma once

#include "meta_analysis/platform/common/KXDistFun.h"

#include <cmath>

namespace MA_NAMESPACE {

/// Critical value of a two-sided normal test, and of the interval of confidence 1 - alpha.
inline double TwoSidedNormalQuantile(double alpha) noexcept
{
    return KXDistFun::IdfStdNorm(1.0 - alpha * 0.5);
}

/// Two-sided significance of a standard normal statistic. As the complement of P(Z <= |z|) it is 0
/// beyond |z| = 8.3, where P rounds to 1.
inline double TwoSidedNormalSignificance(double z) noexcept
{
    return 2.0 * (1.0 - KXDistFun::CdfStdNorm(std::abs(z)));
}

/// Two-sided z test of an estimate, and its confidence interval.
struct MANormalInference
{
    double stdError;
    double zValue;
    double significance;
    double ciLower;
    double ciUpper;
};

inline MANormalInference InferNormal(double estimate, double variance, double nullValue,
                                     double quantile) noexcept
{
    const double stdError = std::sqrt(variance);
    const double z = (estimate - nullValue) / stdError;
    const double halfWidth = quantile * stdError;
    return {stdError, z, TwoSidedNormalSignificance(z), estimate - halfWidth, estimate + halfWidth};
}

} // namespace MA_NAMESPACE
