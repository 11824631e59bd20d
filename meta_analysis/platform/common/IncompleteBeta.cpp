#include "meta_analysis/platform/common/IncompleteBeta.h"

#include "meta_analysis/platform/common/ContinuedFraction.h"
#include "meta_analysis/platform/common/DensityTerms.h"
#include "meta_analysis/platform/common/TailIntegral.h"

#include <algorithm>
#include <cmath>

namespace distribution {

namespace {

// Where both parameters are larger, 24 nodes of the tail integral cost less than the levels of the fraction
// near the mean.
constexpr double largeParameter = 1000.0;

BetaPoint Mirrored(const BetaPoint& point) noexcept
{
    return {point.b, point.a, point.y, point.x, -point.excess};
}

// x^a y^b / B(a, b)
ScaledProbability ScaledDensity(const BetaPoint& point) noexcept
{
    const auto [a, b, x, y, excess] = point;
    const double n = a + b;
    const double remainder = StirlingRemainder(n) - StirlingRemainder(a) - StirlingRemainder(b);
    const double deviance = Deviance(a, n * x, -excess) + Deviance(b, n * y, excess);
    return {remainder - deviance, invSqrtTwoPi * std::sqrt(a / n * b)};
}

// P(X <= x) over the scaled density, for large parameters: the integral over u < x with u = x (1 - v).
double LowerTail(const BetaPoint& point) noexcept
{
    const double aLess1 = point.a - 1.0;
    const double bLess1 = point.b - 1.0;
    const double odds = point.x / point.y;
    const double slope = (point.excess + point.x - point.y) / point.y;
    const double integral = TailIntegral(slope, aLess1 + bLess1 * odds * odds, [=](double v) {
        return slope * v + aLess1 * LogRemainder(-v) + bLess1 * LogRemainder(odds * v);
    });
    return integral / point.y;
}

// The point is below the mean or not far above it.
ScaledProbability LowerProbability(const BetaPoint& point) noexcept
{
    const bool isLarge = std::min(point.a, point.b) > largeParameter;
    const ScaledProbability density = ScaledDensity(point);
    return {density.exponent, density.factor * (isLarge ? LowerTail(point) : BetaFraction(point))};
}

} // namespace

// The even part of the usual fraction in the form of DiDonato and Morris (1992, ACM Transactions on
// Mathematical Software 18, 360-373): the distance from the mean enters as such, not as a difference of
// large numbers.
double BetaFraction(const BetaPoint& point) noexcept
{
    const double a = point.a;
    const double b = point.b;
    const double first = a / (a + 1.0) * (point.excess + 1.0);
    return ContinuedFraction(first, [=](double k) {
        const double scaledX = point.x / (a + 2.0 * k - 1.0);
        const double step = k * (b - k) * scaledX;
        const double share = (a + k) / (a + 2.0 * k + 1.0);
        return PartialQuotient{(a + k - 1.0) * (a + b + k - 1.0) * scaledX * step,
                               k + step + share * (point.excess + 1.0 + k * (1.0 + point.y))};
    });
}

// The fraction converges rapidly for x up to (a + 1) / (a + b + 2), a little above the mean.
Tails BetaTails(const BetaPoint& point) noexcept
{
    const bool isLower = point.excess >= point.x - point.y;
    return {LowerProbability(isLower ? point : Mirrored(point)), isLower};
}

} // namespace distribution
