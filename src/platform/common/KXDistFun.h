#pragma once

#include "meta_analysis/platform/common/Export.h"

/// Probability distributions: distribution functions (Cdf...) and quantiles (Idf...).
///
/// Outside a function's domain, and for a NaN argument, the result is NaN. No function allocates,
/// throws or loops without bound. Measured accuracy: docs/accuracy.md.
class META_ANALYSIS_EXPORT KXDistFun
{
public:
    /// P(Z <= z) for a standard normal Z.
    static double CdfStdNorm(double z) noexcept;

    /// z with P(Z <= z) = p, for p in [0, 1]; -inf at 0 and inf at 1.
    static double IdfStdNorm(double p) noexcept;

    /// As IdfStdNorm for a normal distribution; needs sd > 0.
    static double IdfNorm(double p, double mean, double sd) noexcept;

    /// P(X <= x) for a chi-square X with df > 0 degrees of freedom; 0 for x <= 0.
    static double CdfChi(double x, double df) noexcept;

    /// P(T <= t) for Student's t with df > 0 degrees of freedom (not necessarily whole).
    static double CdfT(double t, double df) noexcept;

    /// t with P(T <= t) = p, for p in [0, 1] and df > 0. `accuracy` is the relative step at which the
    /// iteration stops, `eps` the absolute one (for quantiles at 0); both are bounded below by what a
    /// double resolves.
    static double IdfT(double p, double df, double eps = 1e-20, double accuracy = 1e-12) noexcept;

    /// P(F <= f) for an F distribution with df1 > 0 and df2 > 0; 0 for f <= 0.
    static double CdfF(double f, double df1, double df2) noexcept;
};
