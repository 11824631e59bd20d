#include "meta_analysis/platform/common/IncompleteBeta.h"

#include "meta_analysis/platform/common/ContinuedFraction.h"
#include "meta_analysis/platform/common/DensityTerms.h"
#include "meta_analysis/platform/common/TailIntegral.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace distribution {
inline double AQ = 1000;
namespace {

constexpr double invSqrtTwoPi = 0.39894228040143267794;

// x^a y^b / B(a, b)
double ScaledDensity(const BetaPoint& p) noexcept
{
    const double n = p.a + p.b;
    const double remainder = StirlingRemainder(n) - StirlingRemainder(p.a) - StirlingRemainder(p.b);
    const double deviance = Deviance(p.a, n * p.x, -p.excess) + Deviance(p.b, n * p.y, p.excess);
    return invSqrtTwoPi * std::sqrt(p.a / n * p.b) * std::exp(remainder - deviance);
}
double TailInt(const BetaPoint& p) noexcept
{
    const double odds = p.x / p.y;
    const double a1 = p.a - 1.0, b1 = p.b - 1.0;
    const double slope = (p.excess + p.x - p.y) / p.y;
    return TailIntegral(slope, a1 + b1 * odds * odds, [=](double v) {
        return slope * v + a1 * LogRemainder(-v) + b1 * LogRemainder(odds * v);
    }) / p.y;
}

double Tail(const BetaPoint& p) noexcept
{
    if (std::min(p.a, p.b) > AQ) return ScaledDensity(p) * TailInt(p);
    return ScaledDensity(p) * BetaFraction(p);
}

} // namespace

double BetaFraction(const BetaPoint& p) noexcept
{
    const auto [a, b, x, y, excess] = p;
    const double first = a / (a + 1.0) * (excess + 1.0);
    return ContinuedFraction(first, [=](double k) {
        const double inv = 1.0 / (a + 2.0 * k - 1.0);
        const double t = k * (b - k) * x * inv;
        return PartialQuotient{
            (a + k - 1.0) * (a + b + k - 1.0) * x * inv * t,
            k + t + (a + k) / (a + 2.0 * k + 1.0) * (excess + 1.0 + k * (1.0 + y))};
    });
}

double LowerBeta(const BetaPoint& p) noexcept
{
    if (p.x * (p.a + p.b + 2.0) <= p.a + 1.0) return Tail(p);
    return 1.0 - Tail({p.b, p.a, p.y, p.x, -p.excess});
}

} // namespace distribution
