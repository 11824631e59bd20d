#include "meta_analysis/platform/common/GammaQuantile.h"

#include "meta_analysis/platform/common/DensityTerms.h"
#include "meta_analysis/platform/common/IncompleteGamma.h"
#include "meta_analysis/platform/common/NormalQuantile.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace distribution {

namespace {

constexpr double logSqrtTwoPi = 0.91893853320467274178;

double LogGamma(double x) noexcept
{
    return (x - 0.5) * std::log(x) - x + logSqrtTwoPi + StirlingRemainder(x);
}

// Near a = 0 the slope there, minus Euler's constant, takes the place of the sum, of which only rounding
// would remain.
double LogGammaPlusOne(double a) noexcept
{
    return a < 1e-8 ? -0.57721566490153286061 * a : LogGamma(a + 1.0);
}

// Wilson and Hilferty (1931, PNAS 17, 684-688), from the normal quantile z; negative where it does not hold.
double CubeStart(double a, double z) noexcept
{
    const double root = 1.0 - 1.0 / (9.0 * a) + z / (3.0 * std::sqrt(a));
    return a * root * root * root;
}

// Solves P = x^a / Gamma(a + 1), which exceeds P(X <= x): no quantile is smaller.
double PowerStart(double a, double logP) noexcept
{
    return std::exp((logP + LogGammaPlusOne(a)) / a);
}

// Solves Q = x^(a - 1) e^-x / Gamma(a) / (1 - (a - 1) / x), the start of the expansion far out, by
// substitution; not a number where x is not far out.
double FarStart(double a, double logQ) noexcept
{
    double x = a - logQ;
    for (int substitution = 0; substitution < 4; ++substitution)
        x = (a - 1.0) * std::log(x) - std::log1p((1.0 - a) / x) - logQ - LogGamma(a);
    return x;
}

double LowerStart(double a, double p) noexcept
{
    return std::max(CubeStart(a, NormalQuantile(p)), PowerStart(a, std::log(p)));
}

double UpperStart(double a, double q) noexcept
{
    const double logQ = std::log(q);
    if (-logQ > std::max(2.0 * a, 3.0)) {
        const double far = FarStart(a, logQ);
        if (far > a)
            return far;
    }
    return std::max(CubeStart(a, -NormalQuantile(q)), PowerStart(a, std::log1p(-q)));
}

// Newton's method for the logarithm of a tail by that of x. It is concave, as log X has a log-concave
// density: from its second step on the method approaches the quantile from one side. A step s leaves about
// bend s^2 / 2, where bend, second over first derivative, is a - x - x f(x) / P(X <= x) below and
// a - x + x f(x) / P(X > x) above.
// The start is the result for shapes so large that it is exact, and where the tail underflows.
template <class Tail>
double SolveTail(double a, double probability, double start, double sign, Tail tail) noexcept
{
    constexpr double exactStart = 1e15;
    constexpr int maxSteps = 60; // 6 were seen from 0.5 degrees of freedom on
    constexpr double longestStep = 3.0;
    double x = start;
    for (int i = 0; i < maxSteps && x > 0.0 && a < exactStart; ++i) {
        const double value = tail(a, x);
        if (!(value > 0.0))
            break;
        const double slope = sign * ScaledGammaDensity(a, x) / value;
        const double step = std::clamp(std::log(probability / value) / slope, -longestStep, longestStep);
        x += x * std::expm1(step);
        if (std::fabs(a - x - slope) * step * step <= 0.5 * std::numeric_limits<double>::epsilon())
            break;
    }
    return x;
}

} // namespace

double LowerGammaQuantile(double a, double p) noexcept
{
    return SolveTail(a, p, LowerStart(a, p), 1.0,
                     [](double shape, double x) { return GammaTails(shape, x).Lower(); });
}

double UpperGammaQuantile(double a, double q) noexcept
{
    return SolveTail(a, q, UpperStart(a, q), -1.0,
                     [](double shape, double x) { return GammaTails(shape, x).Upper(); });
}

} // namespace distribution
