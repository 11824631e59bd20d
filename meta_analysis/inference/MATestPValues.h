#pragma once

#include "meta_analysis/inference/MAPValue.h"
#include "meta_analysis/platform/common/KXDistFun.h"

#include <cmath>

namespace MA_NAMESPACE {

/// The p-value `tail`, twice that when `twoSided`. `log10Tail` gives the tail's logarithm and is called only
/// where the tail is too small for its own logarithm to be right.
template <class Log10Tail>
MAPValue PValueOfTail(double tail, bool twoSided, Log10Tail log10Tail) noexcept
{
    const double value = twoSided ? 2.0 * tail : tail;
    return PValueOf(value, [&] { return log10Tail() + std::log10(twoSided ? 2.0 : 1.0); });
}

/// Two-sided p-value of a standard normal statistic.
inline MAPValue TwoSidedNormalPValue(double z) noexcept
{
    const double size = std::abs(z);
    return PValueOfTail(KXDistFun::TailStdNorm(size), true,
                        [=] { return KXDistFun::Log10TailStdNorm(size); });
}

/// Two-sided p-value of Student's t.
inline MAPValue TwoSidedTPValue(double t, double df) noexcept
{
    const double size = std::abs(t);
    return PValueOfTail(KXDistFun::TailT(size, df), true, [=] { return KXDistFun::Log10TailT(size, df); });
}

/// P-value of a chi-square statistic.
inline MAPValue ChiSquarePValue(double x, double df) noexcept
{
    return PValueOfTail(KXDistFun::TailChi(x, df), false, [=] { return KXDistFun::Log10TailChi(x, df); });
}

/// P-value of an F statistic.
inline MAPValue FPValue(double f, double df1, double df2) noexcept
{
    return PValueOfTail(KXDistFun::TailF(f, df1, df2), false,
                        [=] { return KXDistFun::Log10TailF(f, df1, df2); });
}

/// Critical value of a two-sided normal test, and of the interval of confidence 1 - alpha. Taken in the lower
/// tail, for 1 - alpha / 2 would lose the digits of a small alpha.
inline double TwoSidedNormalQuantile(double alpha) noexcept
{
    return -KXDistFun::IdfStdNorm(alpha * 0.5);
}

/// As TwoSidedNormalQuantile for Student's t, to a relative error of 1e-12 whatever its size.
inline double TwoSidedTQuantile(double alpha, double df) noexcept
{
    return -KXDistFun::IdfT(alpha * 0.5, df, 1e-20, 1e-12);
}

} // namespace MA_NAMESPACE
