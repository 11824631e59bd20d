#include "meta_analysis/platform/common/KXDistFun.h"

#include "meta_analysis/platform/common/GammaQuantile.h"
#include "meta_analysis/platform/common/IncompleteBeta.h"
#include "meta_analysis/platform/common/IncompleteGamma.h"
#include "meta_analysis/platform/common/NormalQuantile.h"
#include "meta_analysis/platform/common/StudentT.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace {

using distribution::Tails;
using std::numbers::log10e;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

// No probability depends on where degrees of freedom lie beyond these limits, infinity included; within them
// nothing overflows.
constexpr double smallestDf = 1e-100;
constexpr double largestDf = 1e100;
constexpr double largestChi = 1e150; // beyond it the logarithm of the tail is -x / 2 for any of these

// At this z the normal tail is far from underflow, and the fraction of the gamma distribution takes few
// levels.
constexpr double normalLogStart = 30.0;

// From odds this small on, the tail of F is proportional to a power of f.
constexpr double powerLawOdds = 1e-200;

constexpr Tails allBelow = {{-infinity, 1.0}, false};
constexpr Tails allAbove = {{0.0, 1.0}, false};
constexpr Tails undefinedTails = {{notANumber, 1.0}, false};

double Limited(double df) noexcept
{
    return std::clamp(df, smallestDf, largestDf);
}

// The point of the beta distribution with parameters df1 / 2 and df2 / 2 that belongs to f. Each side of 1
// has its form, so that the difference from the mean keeps the digits of 1 - f.
distribution::BetaPoint BetaPointOf(double f, double df1, double df2) noexcept
{
    const double a = 0.5 * df1;
    const double b = 0.5 * df2;
    if (f <= 1.0) {
        const double odds = a / b * f;
        return {a, b, odds / (1.0 + odds), 1.0 / (1.0 + odds), a * (1.0 - f) / (1.0 + odds)};
    }
    const double odds = b / a / f;
    return {a, b, 1.0 / (1.0 + odds), odds / (1.0 + odds), b * ((1.0 - f) / f) / (1.0 + odds)};
}

Tails ChiTails(double x, double df) noexcept
{
    if (!(df > 0.0) || std::isnan(x))
        return undefinedTails;
    if (x <= 0.0 || std::isinf(x))
        return x > 0.0 ? allBelow : allAbove;
    if (df > largestDf) // all of the distribution lies closer to df than the next double
        return x < df ? allAbove : x > df ? allBelow : Tails{{0.0, 0.5}, false};
    return distribution::GammaTails(0.5 * std::max(df, smallestDf), 0.5 * std::min(x, largestChi));
}

// For finite df.
Tails StudentTails(double t, double df) noexcept
{
    if (!(df > 0.0) || std::isnan(t))
        return undefinedTails;
    return {distribution::StudentT(Limited(df)).Upper(std::fabs(t)), t <= 0.0};
}

// Beyond the point where the tail becomes a power of f it is continued as one, which does not underflow as
// the odds do.
Tails FTails(double f, double df1, double df2) noexcept
{
    if (!(df1 > 0.0) || !(df2 > 0.0) || std::isnan(f))
        return undefinedTails;
    if (f <= 0.0 || std::isinf(f))
        return f > 0.0 ? allBelow : allAbove;
    const double limit = std::max(1.0, Limited(df2) / Limited(df1) / powerLawOdds);
    Tails tails = distribution::BetaTails(BetaPointOf(std::min(f, limit), Limited(df1), Limited(df2)));
    if (f > limit)
        tails.computed.exponent -= 0.5 * Limited(df2) * std::log(f / limit);
    return tails;
}

} // namespace

// In the tail a relative error e of erfc's argument x comes out as 2 x^2 e, up to 700 roundings: the rounding
// of z / sqrt(2) is recovered and taken out to first order.
double KXDistFun::CdfStdNorm(double z) noexcept
{
    constexpr double invSqrt2 = 0.70710678118654752440;
    constexpr double invSqrt2Low = -4.8336466567264565e-17; // what the double above leaves of 1 / sqrt(2)
    const double x = -z * invSqrt2;
    const double probability = 0.5 * std::erfc(x);
    if (z > -1.0 || probability == 0.0)
        return probability;
    const double rounding = std::fma(-z, invSqrt2, -x) - z * invSqrt2Low;
    return probability * (1.0 - 2.0 * x * rounding);
}

double KXDistFun::TailStdNorm(double z) noexcept
{
    return CdfStdNorm(-z);
}

// P(Z > z) is half the tail of the chi-square distribution with one degree of freedom at z^2.
double KXDistFun::Log10TailStdNorm(double z) noexcept
{
    if (z < 0.0)
        return log10e * std::log1p(-CdfStdNorm(z));
    return z > normalLogStart ? Log10TailChi(z * z, 1.0) + std::log10(0.5) : std::log10(TailStdNorm(z));
}

double KXDistFun::IdfStdNorm(double p) noexcept
{
    if (p > 0.0 && p < 1.0)
        return distribution::NormalQuantile(p);
    return p == 0.0 ? -infinity : p == 1.0 ? infinity : notANumber;
}

double KXDistFun::IdfNorm(double p, double mean, double sd) noexcept
{
    return sd > 0.0 ? mean + sd * IdfStdNorm(p) : notANumber;
}

double KXDistFun::CdfChi(double x, double df) noexcept
{
    return ChiTails(x, df).Lower();
}

double KXDistFun::TailChi(double x, double df) noexcept
{
    return ChiTails(x, df).Upper();
}

double KXDistFun::Log10TailChi(double x, double df) noexcept
{
    const bool isBeyond = x > largestChi && df > 0.0 && df <= largestDf;
    return log10e * (isBeyond ? -0.5 * x : ChiTails(x, df).LogUpper());
}

double KXDistFun::IdfChi(double p, double df) noexcept
{
    if (!(df > 0.0 && p >= 0.0 && p <= 1.0))
        return notANumber;
    if (p > 0.5)
        return IdfChiUpper(1.0 - p, df);
    if (p == 0.0 || std::isinf(df))
        return p == 0.0 ? 0.0 : infinity;
    return 2.0 * distribution::LowerGammaQuantile(0.5 * Limited(df), p);
}

double KXDistFun::IdfChiUpper(double q, double df) noexcept
{
    if (!(df > 0.0 && q >= 0.0 && q <= 1.0))
        return notANumber;
    if (q > 0.5)
        return IdfChi(1.0 - q, df);
    if (q == 0.0 || std::isinf(df))
        return infinity;
    return 2.0 * distribution::UpperGammaQuantile(0.5 * Limited(df), q);
}

double KXDistFun::CdfT(double t, double df) noexcept
{
    return std::isinf(df) && df > 0.0 ? CdfStdNorm(t) : StudentTails(t, df).Lower();
}

double KXDistFun::TailT(double t, double df) noexcept
{
    return CdfT(-t, df);
}

double KXDistFun::Log10TailT(double t, double df) noexcept
{
    return std::isinf(df) && df > 0.0 ? Log10TailStdNorm(t) : log10e * StudentTails(t, df).LogUpper();
}

double KXDistFun::IdfT(double p, double df, double eps, double accuracy) noexcept
{
    if (!(df > 0.0) || std::isnan(eps) || std::isnan(accuracy))
        return notANumber;
    if (!(p > 0.0 && p < 1.0) || p == 0.5 || std::isinf(df))
        return IdfStdNorm(p);
    const distribution::StudentT student(Limited(df));
    return p < 0.5 ? -student.UpperQuantile(p, eps, accuracy) : student.UpperQuantile(1.0 - p, eps, accuracy);
}

double KXDistFun::CdfF(double f, double df1, double df2) noexcept
{
    return FTails(f, df1, df2).Lower();
}

double KXDistFun::TailF(double f, double df1, double df2) noexcept
{
    return FTails(f, df1, df2).Upper();
}

double KXDistFun::Log10TailF(double f, double df1, double df2) noexcept
{
    return log10e * FTails(f, df1, df2).LogUpper();
}
