#include "meta_analysis/platform/common/IncompleteGamma.h"

#include "meta_analysis/platform/common/ContinuedFraction.h"
#include "meta_analysis/platform/common/DensityTerms.h"
#include "meta_analysis/platform/common/TailIntegral.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace distribution {

namespace {

// From here on 24 nodes of the tail integral cost less than the terms of the series near x = a.
constexpr double largeShape = 1000.0;

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
    // More than any x <= a + 3 with a <= largeShape needs.
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
// 6.5.31), which needs few levels except near x = a. Taking the complement of this one, rather than the lower
// series throughout, gives 1 - P to the rounding of P.
double UpperFraction(double a, double x) noexcept
{
    const double first = x + 1.0 - a;
    return ContinuedFraction(first, [=](double k) { return PartialQuotient{k * (a - k), first + 2.0 * k}; });
}

double LargeShape(double a, double x, double density) noexcept
{
    return x < a ? density * LowerTail(a, x) : 1.0 - density * UpperTail(a, x);
}

// Just above x = a the series still takes less time than the fraction.
double ModerateShape(double a, double x, double density) noexcept
{
    return x < a + 3.0 ? density * LowerSeries(a, x) / a : 1.0 - density * UpperFraction(a, x);
}

} // namespace

// x^a e^-x / Gamma(a)
double ScaledGammaDensity(double a, double x) noexcept
{
    return invSqrtTwoPi * std::sqrt(a) * std::exp(-StirlingRemainder(a) - Deviance(a, x, x - a));
}

double LowerGamma(double a, double x) noexcept
{
    const double density = ScaledGammaDensity(a, x);
    if (density == 0.0) // so far out that the fraction would overflow
        return x < a ? 0.0 : 1.0;
    const double probability = a > largeShape ? LargeShape(a, x, density) : ModerateShape(a, x, density);
    return std::min(probability, 1.0); // the rounding of the series may exceed 1
}

// Up to x = a + 1 the lower probability leaves an upper one of a tenth of a or more.
double UpperGamma(double a, double x) noexcept
{
    const double density = ScaledGammaDensity(a, x);
    if (x < a || (a <= largeShape && x < a + 1.0))
        return 1.0 - LowerGamma(a, x);
    return density == 0.0 ? 0.0 : density * (a > largeShape ? UpperTail(a, x) : UpperFraction(a, x));
}

} // namespace distribution
