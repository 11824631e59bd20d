#include "meta_analysis/platform/common/IncompleteGamma.h"

#include "meta_analysis/platform/common/ContinuedFraction.h"
#include "meta_analysis/platform/common/DensityTerms.h"
#include "meta_analysis/platform/common/TailIntegral.h"

#include <cmath>
#include <limits>

namespace distribution {

namespace {

// From here on 24 nodes of the tail integral cost less than the terms of the series near x = a.
constexpr double largeShape = 1000.0;

// log of x^a e^-x / Gamma(a), but for the factor sqrt(a / (2 pi))
double DensityExponent(double a, double x) noexcept
{
    return -StirlingRemainder(a) - Deviance(a, x, x - a);
}

// P(a, x) over the scaled density, for a large a: the integral over u < x with u = x (1 - v).
double LowerTail(double a, double x) noexcept
{
    const double slope = a - 1.0 - x;
    return TailIntegral(slope, a - 1.0, [=](double v) { return slope * v + (a - 1.0) * LogRemainder(-v); });
}

// Q(a, x) over the scaled density, for a large a: the integral over u > x with u = x (1 + v).
double UpperTail(double a, double x) noexcept
{
    const double slope = x + 1.0 - a;
    return TailIntegral(slope, a - 1.0, [=](double v) { return slope * v + (a - 1.0) * LogRemainder(v); });
}

// a P(a, x) over the scaled density, the sum of x^n / ((a + 1) ... (a + n)) (Abramowitz and Stegun 1964,
// 6.5.29). All terms are positive, none is lost to another. Each quotient stands alone, so that the divisions
// overlap.
double LowerSeries(double a, double x) noexcept
{
    // More than any x <= a + 1 with a <= largeShape needs.
    constexpr double maxTerms = 1000.0;
    double sum = 1.0;
    double term = 1.0;
    for (double n = 1.0; n < maxTerms && term > 0.25 * std::numeric_limits<double>::epsilon() * sum; ++n) {
        term *= x / (a + n);
        sum += term;
    }
    return sum;
}

// Q(a, x) over the scaled density by the even part of Legendre's fraction (Abramowitz and Stegun 1964,
// 6.5.31), which needs few levels except near x = a.
double UpperFraction(double a, double x) noexcept
{
    const double first = x + 1.0 - a;
    return ContinuedFraction(first, [=](double k) { return PartialQuotient{k * (a - k), first + 2.0 * k}; });
}

Tails LargeShape(double a, double x, const ScaledProbability& density) noexcept
{
    const bool isLower = x < a;
    const double tail = isLower ? LowerTail(a, x) : UpperTail(a, x);
    return {{density.exponent, density.factor * tail}, isLower};
}

// Up to x = a + 1 the lower probability leaves an upper one of a tenth of a or more.
Tails ModerateShape(double a, double x, const ScaledProbability& density) noexcept
{
    const bool isLower = x < a + 1.0;
    const double tail = isLower ? LowerSeries(a, x) / a : UpperFraction(a, x);
    return {{density.exponent, density.factor * tail}, isLower};
}

} // namespace

double ScaledGammaDensity(double a, double x) noexcept
{
    return invSqrtTwoPi * std::sqrt(a) * std::exp(DensityExponent(a, x));
}

Tails GammaTails(double a, double x) noexcept
{
    const ScaledProbability density = {DensityExponent(a, x), invSqrtTwoPi * std::sqrt(a)};
    return a > largeShape ? LargeShape(a, x, density) : ModerateShape(a, x, density);
}

} // namespace distribution
