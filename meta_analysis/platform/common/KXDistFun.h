#pragma once

#include "meta_analysis/platform/common/Export.h"

/// Probability distributions: distribution functions (Cdf...), upper tails (Tail...), their decimal
/// logarithms (Log10Tail...) and quantiles (Idf...).
///
/// Outside a function's domain, and for a NaN argument, the result is NaN; infinite arguments give the
/// limits. Degrees of freedom need not be whole; finite ones count as at most 1e100. Small probabilities are
/// accurate in relative terms, below by Cdf and above by Tail, which is not taken as 1 - Cdf. Log10Tail is
/// right also where Tail underflows. No function allocates, throws, keeps state or loops without bound.
/// Measured accuracy: docs/accuracy.md.
class META_ANALYSIS_EXPORT KXDistFun
{
public:
    /// P(Z <= z) for a standard normal Z.
    static double CdfStdNorm(double z) noexcept;

    /// P(Z > z).
    static double TailStdNorm(double z) noexcept;
    static double Log10TailStdNorm(double z) noexcept;

    /// z with P(Z <= z) = p, for p in [0, 1]; -inf at 0 and inf at 1.
    static double IdfStdNorm(double p) noexcept;

    /// As IdfStdNorm for a normal distribution; needs sd > 0.
    static double IdfNorm(double p, double mean, double sd) noexcept;

    /// P(X <= x) for a chi-square X with df > 0 degrees of freedom; 0 for x <= 0.
    static double CdfChi(double x, double df) noexcept;

    /// P(X > x); 1 for x <= 0.
    static double TailChi(double x, double df) noexcept;
    static double Log10TailChi(double x, double df) noexcept;

    /// x with P(X <= x) = p, for p in [0, 1] and df > 0; 0 at 0 and where no double is as small, inf at 1.
    static double IdfChi(double p, double df) noexcept;

    /// x with P(X > x) = q, in the same way: digits of a q that 1 - q would lose count.
    static double IdfChiUpper(double q, double df) noexcept;

    /// P(T <= t) for Student's t with df > 0 degrees of freedom.
    static double CdfT(double t, double df) noexcept;

    /// P(T > t).
    static double TailT(double t, double df) noexcept;
    static double Log10TailT(double t, double df) noexcept;

    /// t with P(T <= t) = p, for p in [0, 1] and df > 0; infinite at 0 and 1, and where no double is as
    /// large. Iterates until the estimated error is at most `accuracy` in relative or `eps` in absolute
    /// terms, or down to rounding where they ask for more. The error is usually far below the one asked for.
    static double IdfT(double p, double df, double eps = 1e-20, double accuracy = 1e-12) noexcept;

    /// P(F <= f) for an F distribution with df1 > 0 and df2 > 0; 0 for f <= 0.
    static double CdfF(double f, double df1, double df2) noexcept;

    /// P(F > f); 1 for f <= 0.
    static double TailF(double f, double df1, double df2) noexcept;
    static double Log10TailF(double f, double df1, double df2) noexcept;
};
