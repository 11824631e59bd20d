#include "meta_analysis/platform/common/IncompleteGamma.h"

#include "meta_analysis/platform/common/ContinuedFraction.h"
#include "meta_analysis/platform/common/DensityTerms.h"
#include "meta_analysis/platform/common/TailIntegral.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace distribution {

namespace {

constexpr double invSqrtTwoPi = 0.39894228040143267794;

// x^a e^-x / Gamma(a)
double ScaledDensity(double a, double x) noexcept
{
    return invSqrtTwoPi * std::sqrt(a) * std::exp(-StirlingRemainder(a) - Deviance(a, x, x - a));
}

// sum of x^n / ((a + 1) ... (a + n)): positive terms, so that its rounding error is that of its length.
double PowerSeries(double a, double x) noexcept
{
    double sum = 1.0;
    double term = 1.0;
    for (double n = 1.0; n <= 1000.0; ++n) {
        term *= x / (a + n);
        sum += term;
        if (term <= 0.25 * std::numeric_limits<double>::epsilon() * sum)
            break;
    }
    return sum;
}

double UpperFraction(double a, double x) noexcept
{
    return ContinuedFraction(x + 1.0 - a, [=](double k) {
        return PartialQuotient{k * (a - k), x + 2.0 * k + 1.0 - a};
    });
}

double LowerTailIntegral(double a, double x) noexcept
{
    return TailIntegral(a - 1.0 - x, a - 1.0, [=](double v) {
        return (a - 1.0 - x) * v + (a - 1.0) * LogRemainder(-v);
    });
}

double UpperTailIntegral(double a, double x) noexcept
{
    return TailIntegral(x - a + 1.0, a - 1.0, [=](double v) {
        return (x - a + 1.0) * v + (a - 1.0) * LogRemainder(v);
    });
}

struct Tail { double probability; bool isLower; };

Tail ClosedTail(double a, double x) noexcept
{
    const double density = ScaledDensity(a, x);
    if (a > 400) {
        if (x < a) return {density * LowerTailIntegral(a, x), true};
        return {density * UpperTailIntegral(a, x), false};
    }
    if (x < std::max(a + 1.0, 3.0))
        return {density / a * PowerSeries(a, x), true};
    return {density * UpperFraction(a, x), false};
}

} // namespace

double LowerGamma(double a, double x) noexcept
{
    const Tail tail = ClosedTail(a, x);
    return tail.isLower ? tail.probability : 1.0 - tail.probability;
}

double UpperGamma(double a, double x) noexcept
{
    const Tail tail = ClosedTail(a, x);
    return tail.isLower ? 1.0 - tail.probability : tail.probability;
}

} // namespace distribution
