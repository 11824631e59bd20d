#pragma once

#include "meta_analysis/platform/common/KXDistFun.h"

#include <cmath>

namespace MA_NAMESPACE {

/// Critical value of a two-sided t test, and of the interval of confidence 1 - alpha, to a relative error of
/// 1e-12 whatever its size.
inline double TwoSidedTQuantile(double alpha, double df) noexcept
{
    return KXDistFun::IdfT(1.0 - alpha * 0.5, df, 1e-20, 1e-12);
}

/// Two-sided significance of Student's t. As the complement of P(T <= |t|) it is 0 where P rounds to 1.
inline double TwoSidedTSignificance(double t, double df) noexcept
{
    return 2.0 * (1.0 - KXDistFun::CdfT(std::abs(t), df));
}

} // namespace MA_NAMESPACE
