#include "meta_analysis/effectsize/MANaturalScale.h"

#include "meta_analysis/effectsize/MARatio.h"
#include "meta_analysis/platform/common/Square.h"
#include "meta_analysis/platform/common/SumsWithoutEach.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace MA_NAMESPACE {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

/// Without overflow of the exponential.
double Logistic(double x)
{
    const double e = std::exp(-std::abs(x));
    return (x < 0.0 ? e : 1.0) / (1.0 + e);
}

double SquaredSine(double angle)
{
    return Square(std::sin(std::clamp(angle, 0.0, std::numbers::pi / 2.0)));
}

/// Miller's inverse p = (1 - sgn(cos s) √(1 - (sin s + (sin s - 1 / sin s) / n)²)) / 2, s the sum of the two
/// arcsines, loses half the digits near p = 1/2. Here their difference d is taken from
/// sin d = 1 / ((n + 1) sin s), and x = (n + 1) sin²((s - d) / 2).
double ProportionOf(double halfSum, double n)
{
    const double sum = 2.0 * halfSum;
    const double least = std::atan2(1.0, std::sqrt(n)); // of no event
    if (sum <= least)
        return 0.0;
    if (sum >= std::numbers::pi - least)
        return 1.0;
    const double difference = std::asin(1.0 / ((n + 1.0) * std::sin(sum)));
    return std::min((n + 1.0) / n * Square(std::sin((sum - difference) / 2.0)), 1.0);
}

/// With s = √x + √(x + 1), 1 / s is their difference.
double RateOf(double halfSum, double time)
{
    const double sum = 2.0 * halfSum * std::sqrt(time);
    return sum <= 1.0 ? 0.0 : Square((sum - 1.0 / sum) / 2.0) / time;
}

/// `transform` of a value inside [lowest, highest], and beyond it the infinity of that side.
template <class Transform>
double Inside(double natural, double lowest, double highest, Transform transform)
{
    if (natural < lowest)
        return -infinity;
    return natural > highest ? infinity : transform(natural);
}

double HalfSumOfArcsines(double p, double n)
{
    const double x = n * p;
    const double m = n * (1.0 - p);
    return (std::atan2(std::sqrt(x), std::sqrt(m + 1.0)) + std::atan2(std::sqrt(x + 1.0), std::sqrt(m))) /
           2.0;
}

/// NaN where no size has the variance.
double SizeOf(MAScale scale, double variance)
{
    const double size = (1.0 / variance - (scale == MAScale::FreemanTukeyProportion ? 2.0 : 0.0)) / 4.0;
    return size > 0.0 ? size : std::numeric_limits<double>::quiet_NaN();
}

} // namespace

double ToNatural(MAScale scale, double value, double size)
{
    if (KXMV::IsMissing(value) || (DependsOnSize(scale) && KXMV::IsMissing(size)))
        return KXMV::Missing();
    switch (scale) {
    case MAScale::Natural:
        return value;
    case MAScale::Log:
        return RatioOf(value);
    case MAScale::Logit:
        return Logistic(value);
    case MAScale::Arcsine:
        return SquaredSine(value);
    case MAScale::SquareRoot:
        return Square(std::max(value, 0.0));
    case MAScale::FisherZ:
        return std::tanh(value);
    case MAScale::FreemanTukeyProportion:
        return ProportionOf(value, size);
    case MAScale::FreemanTukeyRate:
        return RateOf(value, size);
    }
    return value;
}

double FromNatural(MAScale scale, double natural, double size)
{
    if (KXMV::IsMissing(natural) || (DependsOnSize(scale) && KXMV::IsMissing(size)))
        return KXMV::Missing();
    switch (scale) {
    case MAScale::Natural:
        return natural;
    case MAScale::Log:
        return Inside(natural, 0.0, infinity, [](double x) { return std::log(x); });
    case MAScale::Logit:
        return Inside(natural, 0.0, 1.0, [](double p) { return std::log(p / (1.0 - p)); });
    case MAScale::Arcsine:
        return Inside(natural, 0.0, 1.0,
                      [](double p) { return std::atan2(std::sqrt(p), std::sqrt(1.0 - p)); });
    case MAScale::SquareRoot:
        return Inside(natural, 0.0, infinity, [](double x) { return std::sqrt(x); });
    case MAScale::FisherZ:
        return Inside(natural, -1.0, 1.0, [](double r) { return std::atanh(r); });
    case MAScale::FreemanTukeyProportion:
        return Inside(natural, 0.0, 1.0, [size](double p) { return HalfSumOfArcsines(p, size); });
    case MAScale::FreemanTukeyRate:
        return Inside(natural, 0.0, infinity,
                      [size](double x) { return (std::sqrt(x) + std::sqrt(x + 1.0 / size)) / 2.0; });
    }
    return natural;
}

void MAHarmonicSize::AddSizeOf(double variance)
{
    count_ += 1.0;
    inverseSum_ += 1.0 / SizeOf(scale_, variance);
}

double HarmonicSize(MAScale scale, std::span<const double> variances)
{
    if (!DependsOnSize(scale))
        return KXMV::Missing();
    MAHarmonicSize size(scale);
    for (const double variance : variances)
        size.Add(variance);
    return size.Mean();
}

/// From the studies before and those after each, because a difference of sums would lose digits.
std::vector<double> HarmonicSizesWithoutEach(MAScale scale, std::span<const double> variances)
{
    std::vector<double> sizes;
    sizes.reserve(variances.size());
    for (const MAHarmonicSize& others :
         SumsWithoutEach(variances.size(), MAHarmonicSize(scale),
                         [&](std::size_t i, MAHarmonicSize&sums) { sums.Add(variances[i]); }))
        sizes.push_back(others.Mean());
    return sizes;
}

} // namespace MA_NAMESPACE
