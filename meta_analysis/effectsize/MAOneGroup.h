#pragma once

#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/settings/MAConst.h"

#include <cmath>

namespace MA_NAMESPACE {

/// The effect of one study and its variance, on the scale of the analysis. What a measure does not define,
/// such as the logarithm of 0, is not finite.
struct MAOutcomeEffect
{
    double effect;
    double variance;
};

// What one group of a study reports. `Flaw` tells why the values cannot be a study's, `EXCLUSION_NONE` when
// they can. A measure that corrects zeros asks for `HasZeroCell` and for the counts `Plus` a constant.

struct MAProportion
{
    double events;
    double nonEvents;

    double Size() const { return events + nonEvents; }
    MAConst::EXCLUSION Flaw() const
    {
        if (KXMV::IsMissing(events) || KXMV::IsMissing(nonEvents))
            return MAConst::EXCLUSION_MISSING_VALUE;
        if (events < 0.0 || nonEvents < 0.0)
            return MAConst::EXCLUSION_NEGATIVE_COUNT;
        return Size() > 0.0 ? MAConst::EXCLUSION_NONE : MAConst::EXCLUSION_NO_PERSONS;
    }
    bool HasZeroCell() const { return events == 0.0 || nonEvents == 0.0; }
    MAProportion Plus(double added) const { return {events + added, nonEvents + added}; }
};

struct MARate
{
    double events;
    double time;

    MAConst::EXCLUSION Flaw() const
    {
        if (KXMV::IsMissing(events) || KXMV::IsMissing(time))
            return MAConst::EXCLUSION_MISSING_VALUE;
        if (events < 0.0)
            return MAConst::EXCLUSION_NEGATIVE_COUNT;
        return time > 0.0 ? MAConst::EXCLUSION_NONE : MAConst::EXCLUSION_TIME_NOT_POSITIVE;
    }
    bool HasZeroCell() const { return events == 0.0; }
    MARate Plus(double added) const { return {events + added, time}; }
};

struct MACorrelation
{
    double r;
    double size;

    double Size() const { return size; }
    MAConst::EXCLUSION Flaw() const
    {
        if (KXMV::IsMissing(r) || KXMV::IsMissing(size))
            return MAConst::EXCLUSION_MISSING_VALUE;
        if (!(std::abs(r) < 1.0))
            return MAConst::EXCLUSION_CORRELATION_OUTSIDE;
        return size > 1.0 ? MAConst::EXCLUSION_NONE : MAConst::EXCLUSION_GROUP_TOO_SMALL;
    }
};

struct MAMean
{
    double size;
    double mean;
    double stdDev;

    double Size() const { return size; }
    MAConst::EXCLUSION Flaw() const
    {
        if (KXMV::IsMissing(size) || KXMV::IsMissing(mean) || KXMV::IsMissing(stdDev))
            return MAConst::EXCLUSION_MISSING_VALUE;
        if (!(size > 1.0))
            return MAConst::EXCLUSION_GROUP_TOO_SMALL;
        return stdDev > 0.0 ? MAConst::EXCLUSION_NONE : MAConst::EXCLUSION_SPREAD_NOT_POSITIVE;
    }
};

// The measures of one group: effect and variance of a study. Variances of the transformed values are by the
// delta method, unless a source is named.

struct MALogitProportion
{
    using Study = MAProportion;
    static MAOutcomeEffect Effect(const MAProportion& study)
    {
        return {std::log(study.events / study.nonEvents), 1.0 / study.events + 1.0 / study.nonEvents};
    }
};

/// Half the sum of asin(√(x / (n + 1))) and asin(√((x + 1) / (n + 1))) for x events of n: Freeman and Tukey
/// (1950), Annals of Mathematical Statistics 21, 607-611. The arcsines are those of an angle whose sides are
/// known, which keeps their digits where a proportion is near 1.
struct MAFreemanTukeyProportion
{
    using Study = MAProportion;
    static MAOutcomeEffect Effect(const MAProportion& study)
    {
        const auto [x, m] = study;
        const double lower = std::atan2(std::sqrt(x), std::sqrt(m + 1.0));
        const double upper = std::atan2(std::sqrt(x + 1.0), std::sqrt(m));
        return {(lower + upper) / 2.0, 1.0 / (4.0 * study.Size() + 2.0)};
    }
};

struct MAArcsineProportion
{
    using Study = MAProportion;
    static MAOutcomeEffect Effect(const MAProportion& study)
    {
        return {std::atan2(std::sqrt(study.events), std::sqrt(study.nonEvents)), 1.0 / (4.0 * study.Size())};
    }
};

/// The variance 1 / x - 1 / n is written without the difference. Near 1 the logarithm is that of 1 - m / n.
struct MALogProportion
{
    using Study = MAProportion;
    static MAOutcomeEffect Effect(const MAProportion& study)
    {
        const auto [x, m] = study;
        const double n = study.Size();
        return {m < x ? std::log1p(-m / n) : std::log(x / n), m / x / n};
    }
};

struct MARawProportion
{
    using Study = MAProportion;
    static MAOutcomeEffect Effect(const MAProportion& study)
    {
        const double n = study.Size();
        const double p = study.events / n;
        return {p, p * (study.nonEvents / n) / n};
    }
};

struct MALogRate
{
    using Study = MARate;
    static MAOutcomeEffect Effect(const MARate& study)
    {
        return {std::log(study.events / study.time), 1.0 / study.events};
    }
};

struct MASquareRootRate
{
    using Study = MARate;
    static MAOutcomeEffect Effect(const MARate& study)
    {
        return {std::sqrt(study.events / study.time), 1.0 / (4.0 * study.time)};
    }
};

/// Half the sum of √(x / t) and √((x + 1) / t), the transformation of Freeman and Tukey (1950) for counts.
struct MAFreemanTukeyRate
{
    using Study = MARate;
    static MAOutcomeEffect Effect(const MARate& study)
    {
        const auto [x, t] = study;
        return {(std::sqrt(x / t) + std::sqrt((x + 1.0) / t)) / 2.0, 1.0 / (4.0 * t)};
    }
};

struct MARawRate
{
    using Study = MARate;
    static MAOutcomeEffect Effect(const MARate& study)
    {
        return {study.events / study.time, study.events / study.time / study.time};
    }
};

/// Fisher (1921), Metron 1, 3-32.
struct MAFisherZ
{
    using Study = MACorrelation;
    static MAOutcomeEffect Effect(const MACorrelation& study)
    {
        return {std::atanh(study.r), 1.0 / (study.size - 3.0)};
    }
};

/// The variance (1 - r²)² / (n - 1).
struct MARawCorrelation
{
    using Study = MACorrelation;
    static MAOutcomeEffect Effect(const MACorrelation& study)
    {
        const double unexplained = (1.0 - study.r) * (1.0 + study.r);
        return {study.r, unexplained * unexplained / (study.size - 1.0)};
    }
};

struct MARawMean
{
    using Study = MAMean;
    static MAOutcomeEffect Effect(const MAMean& study)
    {
        return {study.mean, study.stdDev * study.stdDev / study.size};
    }
};

/// The part of one group in the log response ratio of Hedges, Gurevitch and Curtis (1999), Ecology 80,
/// 1150-1156: the variance sd² / (n mean²).
struct MALogMean
{
    using Study = MAMean;
    static MAOutcomeEffect Effect(const MAMean& study)
    {
        const double variation = study.stdDev / study.mean;
        return {std::log(study.mean), variation * variation / study.size};
    }
};

} // namespace MA_NAMESPACE
