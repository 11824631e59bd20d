#include "meta_analysis/effectsize/MAConversions.h"

#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/settings/Alpha.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace MA_NAMESPACE {

namespace {

constexpr double largestAsymmetry = 0.05;  // as a fraction of the width
constexpr double smallestTestedSize = 5.0; // below it quartiles are hardly other than extremes

bool IsFraction(double x)
{
    return x > 0.0 && x < 1.0;
}

template <class... Values>
bool IsAnyMissing(Values... values)
{
    return (KXMV::IsMissing(values) || ...) || (std::isnan(values) || ...);
}

MAConvertedEffect Unusable(MAConst::EXCLUSION reason)
{
    MAConvertedEffect none;
    none.status = reason;
    return none;
}

MAConvertedEffect Converted(double effectSize, double stdError)
{
    if (!std::isfinite(effectSize) || !std::isfinite(stdError))
        return Unusable(MAConst::EXCLUSION_NOT_POOLABLE);
    return {MAConst::EXCLUSION_NONE, effectSize, stdError, false};
}

/// An estimate with its confidence limits, on the scale on which they are reported.
struct Interval
{
    double estimate;
    double lower;
    double upper;
    bool isRatio;
    double decimals; ///< in print, if known

    double OnAnalysisScale(double value) const { return isRatio ? std::log(value) : value; }
    double Width() const { return OnAnalysisScale(upper) - OnAnalysisScale(lower); }
    /// (upper - estimate) - (estimate - lower), when each was shifted by as much.
    double Asymmetry(double shiftOfLimits, double shiftOfEstimate) const
    {
        const double middle = OnAnalysisScale(estimate + shiftOfEstimate);
        return (OnAnalysisScale(upper + shiftOfLimits) - middle) -
               (middle - OnAnalysisScale(lower + shiftOfLimits));
    }
};

/// Half a unit in the last decimal that the three have in print.
double RoundingOf(const Interval& interval)
{
    const int needed =
        std::max({DecimalsOf(interval.estimate), DecimalsOf(interval.lower), DecimalsOf(interval.upper)});
    return 0.5 * std::pow(10.0, IsAnyMissing(interval.decimals) ? -needed : -interval.decimals);
}

/// The asymmetry falls with the estimate and grows with both limits, so that values which print alike have at
/// least, or at most, the shifted one. A ratio that may be 0 in print has no logarithm when it is shifted;
/// the comparison is then false, and the print explains the asymmetry.
bool IsAsymmetric(const Interval& interval)
{
    const double asymmetry = interval.Asymmetry(0.0, 0.0);
    if (!(std::abs(asymmetry) > largestAsymmetry * interval.Width()))
        return false;
    const double half = RoundingOf(interval);
    return asymmetry > 0.0 ? interval.Asymmetry(-half, half) > 0.0 : interval.Asymmetry(half, -half) < 0.0;
}

MAConvertedMean Unusable(MAConst::EXCLUSION reason, MAConst::CONVERSION from)
{
    MAConvertedMean none;
    none.status = reason;
    none.from = from;
    return none;
}

MAConst::CONVERSION SourceOf(const MAGroupSummary& summary)
{
    const bool hasQuartiles = !IsAnyMissing(summary.q1, summary.q3);
    const bool hasExtremes = !IsAnyMissing(summary.minimum, summary.maximum);
    if (IsAnyMissing(summary.size, summary.median))
        return MAConst::CONVERSION_NONE;
    if (hasQuartiles)
        return hasExtremes ? MAConst::CONVERSION_FIVE_NUMBERS : MAConst::CONVERSION_QUARTILES;
    return hasExtremes ? MAConst::CONVERSION_EXTREMES : MAConst::CONVERSION_NONE;
}

/// Two values at the same distance from the ends of the data, about the median.
struct Pair
{
    double low;
    double high;

    double Middle() const { return low / 2.0 + high / 2.0; }
    double Width() const { return high - low; }
    bool IsAbout(double median) const { return low <= median && median <= high; }
    /// Bowley's measure of skewness, without sign; 0 for equal values.
    double Skewness(double median) const
    {
        return Width() > 0.0 ? std::abs((high - median) - (median - low)) / Width() : 0.0;
    }
};

/// The conversions of a group of n whose median is m.
struct Sample
{
    double n;
    double m;
    Pair extremes;
    Pair quartiles;

    // Quantiles are taken in the lower tail, which keeps the digits for large n.
    double StdDevByExtremes() const
    {
        return extremes.Width() / (-2.0 * KXDistFun::IdfStdNorm(0.625 / (n + 0.25)));
    }
    double StdDevByQuartiles() const
    {
        return quartiles.Width() / (-2.0 * KXDistFun::IdfStdNorm((0.25 * n + 0.375) / (n + 0.25)));
    }
    double WeightOfExtremes(double c) const { return c / (c + std::pow(n, 0.75)); }

    MAConvertedMean ByExtremes() const;
    MAConvertedMean ByQuartiles() const;
    MAConvertedMean ByFiveNumbers() const;
    MAConvertedMean By(MAConst::CONVERSION from) const;

    MAConvertedMean Result(MAConst::CONVERSION from, double mean, double stdDev, double skewness,
                           double criticalValue) const
    {
        return {MAConst::EXCLUSION_NONE, from, mean, stdDev,
                n >= smallestTestedSize && skewness > criticalValue};
    }
};

MAConvertedMean Sample::ByExtremes() const
{
    const double w = WeightOfExtremes(4.0);
    return Result(MAConst::CONVERSION_EXTREMES, w * extremes.Middle() + (1.0 - w) * m, StdDevByExtremes(),
                  extremes.Skewness(m), 1.01 / std::log(n + 9.0) + 2.43 / (n + 1.0));
}

MAConvertedMean Sample::ByQuartiles() const
{
    const double w = 0.7 + 0.39 / n;
    return Result(MAConst::CONVERSION_QUARTILES, w * quartiles.Middle() + (1.0 - w) * m, StdDevByQuartiles(),
                  quartiles.Skewness(m), 2.66 / std::sqrt(n) - 5.92 / (n * n));
}

MAConvertedMean Sample::ByFiveNumbers() const
{
    const double u = WeightOfExtremes(2.2);
    const double w = 0.7 - 0.72 / std::pow(n, 0.55);
    const double mean = u * extremes.Middle() + w * quartiles.Middle() + (1.0 - u - w) * m;
    const double scale = 2.65 * std::log(0.6 * n) / std::sqrt(n);
    return Result(MAConst::CONVERSION_FIVE_NUMBERS, mean,
                  StdDevByExtremes() / 2.0 + StdDevByQuartiles() / 2.0,
                  std::max(scale * extremes.Skewness(m), quartiles.Skewness(m)),
                  2.97 / std::sqrt(n) - 39.1 / (n * n * n));
}

MAConvertedMean Sample::By(MAConst::CONVERSION from) const
{
    if (from == MAConst::CONVERSION_EXTREMES)
        return ByExtremes();
    return from == MAConst::CONVERSION_QUARTILES ? ByQuartiles() : ByFiveNumbers();
}

/// What is not used of a summary does not count.
bool Ascends(const Sample& sample, MAConst::CONVERSION from)
{
    if (from == MAConst::CONVERSION_EXTREMES)
        return sample.extremes.IsAbout(sample.m);
    if (from == MAConst::CONVERSION_QUARTILES)
        return sample.quartiles.IsAbout(sample.m);
    return sample.extremes.low <= sample.quartiles.low && sample.quartiles.IsAbout(sample.m) &&
           sample.quartiles.high <= sample.extremes.high;
}

} // namespace

int DecimalsOf(double value) noexcept
{
    char text[32] = {}; // the shortest form has 24 at most, as -1.2345678901234567e-308
    const char* const end = std::to_chars(text, text + sizeof text, value, std::chars_format::scientific).ptr;
    const char* const mark = std::find(static_cast<const char*>(text), end, 'e');
    if (mark == end)
        return 0; // infinite or no number
    const char* const point = std::find(static_cast<const char*>(text), mark, '.');
    const auto digits = point == mark ? 0 : static_cast<int>(mark - point) - 1;
    int exponent = 0;
    std::from_chars(mark[1] == '+' ? mark + 2 : mark + 1, end, exponent);
    return std::max(digits - exponent, 0);
}

MAConvertedEffect EffectOfInterval(double estimate, double lower, double upper, double level, bool isRatio,
                                   double decimals) noexcept
{
    if (IsAnyMissing(estimate, lower, upper))
        return Unusable(MAConst::EXCLUSION_MISSING_VALUE);
    if (!IsFraction(level))
        return Unusable(MAConst::EXCLUSION_LEVEL_OUTSIDE);
    if (isRatio && !(estimate > 0.0 && lower > 0.0 && upper > 0.0))
        return Unusable(MAConst::EXCLUSION_RATIO_NOT_POSITIVE);
    if (!(lower < upper))
        return Unusable(MAConst::EXCLUSION_LIMITS_NOT_ASCENDING);
    if (!(lower <= estimate && estimate <= upper))
        return Unusable(MAConst::EXCLUSION_OUTSIDE_LIMITS);
    const Interval interval = {estimate, lower, upper, isRatio, decimals};
    MAConvertedEffect effect = Converted(interval.OnAnalysisScale(estimate),
                                         interval.Width() / (2.0 * TwoSidedNormalQuantile(AlphaOf(level))));
    effect.isAsymmetric = effect.status == MAConst::EXCLUSION_NONE && IsAsymmetric(interval);
    return effect;
}

MAConvertedEffect EffectOfPValue(double estimate, double pValue, bool isRatio) noexcept
{
    if (IsAnyMissing(estimate, pValue))
        return Unusable(MAConst::EXCLUSION_MISSING_VALUE);
    if (isRatio && !(estimate > 0.0))
        return Unusable(MAConst::EXCLUSION_RATIO_NOT_POSITIVE);
    if (!IsFraction(pValue))
        return Unusable(MAConst::EXCLUSION_P_VALUE_OUTSIDE);
    const double effectSize = isRatio ? std::log(estimate) : estimate;
    if (effectSize == 0.0)
        return Unusable(MAConst::EXCLUSION_ESTIMATE_ZERO);
    return Converted(effectSize, std::abs(effectSize) / TwoSidedNormalQuantile(pValue));
}

MAConvertedMean MeanOfSummary(const MAGroupSummary& summary) noexcept
{
    const MAConst::CONVERSION from = SourceOf(summary);
    if (from == MAConst::CONVERSION_NONE)
        return {};
    if (!(summary.size >= 2.0))
        return Unusable(MAConst::EXCLUSION_GROUP_TOO_SMALL, from);
    const Sample sample = {
        summary.size, summary.median, {summary.minimum, summary.maximum}, {summary.q1, summary.q3}};
    if (!Ascends(sample, from))
        return Unusable(MAConst::EXCLUSION_SUMMARY_NOT_ASCENDING, from);
    const MAConvertedMean converted = sample.By(from);
    if (converted.stdDev == 0.0)
        return Unusable(MAConst::EXCLUSION_SPREAD_NOT_POSITIVE, from);
    if (!std::isfinite(converted.mean) || !std::isfinite(converted.stdDev))
        return Unusable(MAConst::EXCLUSION_NOT_POOLABLE, from);
    return converted;
}

double NonEventsOf(double events, double size) noexcept
{
    if (IsAnyMissing(events, size))
        return KXMV::Missing();
    const double rest = size - events;
    return std::isnan(rest) ? -std::numeric_limits<double>::infinity() : rest; // no number of no number
}

} // namespace MA_NAMESPACE
