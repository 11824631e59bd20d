#pragma once

#include <cmath>
#include <limits>
#include <utility>

namespace distribution {

/// One level of a continued fraction: the partial numerator and denominator.
struct PartialQuotient
{
    double numerator;
    double denominator;
};

/// 1 / (b0 + a1 / (b1 + a2 / (b2 + ...))), where `partial(k)` gives a_k and b_k, k = 1, 2, ...
///
/// Forward recurrence for numerator and denominator of the convergents: in a level only two operations wait
/// for the level before, where the forms that update the value itself wait for a division.
template <class Partial>
double ContinuedFraction(double firstDenominator, Partial partial) noexcept
{
    // The fractions of this library take up to 100 levels.
    constexpr int maxLevels = 1000;
    constexpr double large = 1e100;
    double numerator = 1.0;
    double previousNumerator = 0.0;
    double denominator = firstDenominator;
    double previousDenominator = 1.0;
    for (int k = 1; k <= maxLevels; ++k) {
        const PartialQuotient level = partial(static_cast<double>(k));
        const double nextNumerator = level.denominator * numerator + level.numerator * previousNumerator;
        const double nextDenominator =
            level.denominator * denominator + level.numerator * previousDenominator;
        // Two convergents are compared by the cross products of their parts.
        const double product = numerator * nextDenominator;
        const double change = std::fabs(nextNumerator * denominator - product);
        previousNumerator = std::exchange(numerator, nextNumerator);
        previousDenominator = std::exchange(denominator, nextDenominator);
        if (change <= std::numeric_limits<double>::epsilon() * std::fabs(product))
            break;
        if (denominator > large) {
            numerator /= large;
            previousNumerator /= large;
            denominator /= large;
            previousDenominator /= large;
        }
    }
    return numerator / denominator;
}

} // namespace distribution
