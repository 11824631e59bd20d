#pragma once

#include <cmath>
#include <limits>

namespace distribution {

/// One level of a continued fraction: the partial numerator and denominator.
struct PartialQuotient
{
    double numerator;
    double denominator;
};

/// 1 / (b0 + a1 / (b1 + a2 / (b2 + ...))), where `partial(k)` gives a_k and b_k.
///
/// Forward recurrence for the numerators and denominators of the convergents: two multiplications wait for
/// each other in a level, where forms that update the value itself wait for a division.
template <class Partial>
double ContinuedFraction(double firstDenominator, Partial partial) noexcept
{
    // The fractions of this library, where they are used, take up to 150 levels.
    constexpr int maxLevels = 1000;
    constexpr double large = 1e100;
    double numerator = 1.0, previousNumerator = 0.0;
    double denominator = firstDenominator, previousDenominator = 1.0;
    for (int k = 1; k <= maxLevels; ++k) {
        const PartialQuotient level = partial(static_cast<double>(k));
        const double nextNumerator = level.denominator * numerator + level.numerator * previousNumerator;
        const double nextDenominator = level.denominator * denominator + level.numerator * previousDenominator;
        const double before = numerator * nextDenominator;
        const double change = std::fabs(nextNumerator * denominator - before);
        previousNumerator = numerator;
        previousDenominator = denominator;
        numerator = nextNumerator;
        denominator = nextDenominator;
        if (change <= std::numeric_limits<double>::epsilon() * std::fabs(before)) {
            break;
        }
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
