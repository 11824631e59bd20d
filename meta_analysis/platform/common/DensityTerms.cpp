#include "meta_analysis/platform/common/DensityTerms.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace distribution {

namespace {

// From here on seven terms of Stirling's series (Abramowitz and Stegun 1964, 6.1.41) reach 3e-17.
constexpr double seriesStart = 10.0;

// Up to this |u / (2 + u)| the difference u - log(1 + u) is summed. Beyond, it is a sixth of its terms or
// more.
constexpr double cancellationLimit = 0.2;

// Below this share of the count the logarithm of the expected value loses less than that of 1 plus the
// relative difference.
constexpr double smallShare = 0.25;

// StirlingRemainder(1/2), (1), (3/2), ... (10): whole degrees of freedom need no others below the series.
// Computed with 40 digits.
constexpr std::array halfIntegerRemainders = {
    0.15342640972002734529,   0.08106146679532725822,   0.054814121051917653896, 0.041340695955409294094,
    0.033162873519936287485,  0.027677925684998339149,  0.023746163656297495971, 0.020790672103765093112,
    0.018488450532673185231,  0.016644691189821192163,  0.015134973221917378874, 0.013876128823070747999,
    0.012810465242920226924,  0.011896709945891770095,  0.011104559758206917327, 0.010411265261972096497,
    0.0097994161261588032984, 0.0092554621827127329177, 0.008768700134139385463, 0.0083305634333628712565};

double StirlingSeries(double x) noexcept
{
    const double s = 1.0 / (x * x);
    const double sum = 1.0 / 1188.0 - s * (691.0 / 360360.0 - s / 156.0);
    return (1.0 / 12.0 - s * (1.0 / 360.0 - s * (1.0 / 1260.0 - s * (1.0 / 1680.0 - s * sum)))) / x;
}

// Gamma(x + n) = x (x + 1) ... (x + n - 1) Gamma(x) carries x into the range of the series. Each factor is
// taken relative to the end of the walk, so that the product neither overflows nor leaves large logarithms.
double ShiftedStirlingSeries(double x) noexcept
{
    const double steps = std::ceil(seriesStart - x);
    const double end = x + steps;
    double product = 1.0;
    for (double j = 0.0; j < steps; ++j)
        product *= end / (x + j);
    return StirlingSeries(end) - steps + (x - 0.5) * std::log(end / x) + std::log(product);
}

} // namespace

double StirlingRemainder(double x) noexcept
{
    if (x > seriesStart)
        return StirlingSeries(x);
    const double halves = 2.0 * x;
    if (halves >= 1.0 && halves == std::floor(halves))
        return halfIntegerRemainders[static_cast<std::size_t>(halves) - 1];
    return ShiftedStirlingSeries(x);
}

// log(1 + u) = 2 artanh(r) with r = u / (2 + u), and 2 r = u - r u: the leading term cancels on paper. With
// r^2 <= 1/25 the ten terms kept leave nothing above rounding.
double LogRemainder(double u) noexcept
{
    const double r = u / (2.0 + u);
    if (std::fabs(r) > cancellationLimit)
        return u - std::log1p(u);
    const double s = r * r;
    const double high = 1.0 / 15.0 + s * (1.0 / 17.0 + s * (1.0 / 19.0 + s / 21.0));
    const double middle = 1.0 / 9.0 + s * (1.0 / 11.0 + s * (1.0 / 13.0 + s * high));
    const double sum = 1.0 / 3.0 + s * (1.0 / 5.0 + s * (1.0 / 7.0 + s * middle));
    return r * (u - 2.0 * s * sum);
}

// A relative error of the difference hardly changes u - log(1 + u), one of the expected value does: in a far
// tail of a large count the deviance is a small part of the count.
double Deviance(double count, double expected, double difference) noexcept
{
    if (expected > smallShare * count)
        return count * LogRemainder(difference / count);
    return difference - count * std::log(expected / count);
}

} // namespace distribution
