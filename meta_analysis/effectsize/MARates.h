#pragma once

#include "meta_analysis/effectsize/MAOneGroup.h"
#include "meta_analysis/settings/MAOutcomeMeasures.h"

#include <cmath>

namespace MA_NAMESPACE {

/// Events and person-time of the treatment and the control group of one study.
struct MAGroupRates
{
    double a;  ///< treatment events
    double t1; ///< treatment time
    double c;  ///< control events
    double t0; ///< control time

    double Time() const { return t1 + t0; }
    double TreatmentRate() const { return a / t1; }
    double ControlRate() const { return c / t0; }

    MAConst::EXCLUSION Flaw() const
    {
        if (KXMV::IsMissing(a) || KXMV::IsMissing(t1) || KXMV::IsMissing(c) || KXMV::IsMissing(t0))
            return MAConst::EXCLUSION_MISSING_VALUE;
        if (a < 0.0 || c < 0.0)
            return MAConst::EXCLUSION_NEGATIVE_COUNT;
        return t1 > 0.0 && t0 > 0.0 ? MAConst::EXCLUSION_NONE : MAConst::EXCLUSION_TIME_NOT_POSITIVE;
    }
    bool HasZeroCell() const { return a == 0.0 || c == 0.0; }
    MAGroupRates Plus(double added) const { return {a + added, t1, c + added, t0}; }
};

// The measures of two groups' rates, on the scale of the analysis. Rothman, Greenland and Lash (2008), Modern
// Epidemiology, chapter 14.

/// The variance of the log rate ratio is 1 / a + 1 / c.
struct MARateRatio
{
    using Study = MAGroupRates;
    static constexpr bool onLogScale = ScaleOf(MAConst::RATES_RATIO) == MAScale::Log;

    static double Variance(const MAGroupRates& study) { return 1.0 / study.a + 1.0 / study.c; }
    static MAOutcomeEffect Effect(const MAGroupRates& study)
    {
        return {std::log(study.TreatmentRate() / study.ControlRate()), Variance(study)};
    }
};

/// The variance of the rate difference is a / t1² + c / t0².
struct MARateDifference
{
    using Study = MAGroupRates;
    static constexpr bool onLogScale = ScaleOf(MAConst::RATES_DIFFERENCE) == MAScale::Log;

    static double Variance(const MAGroupRates& study)
    {
        return study.TreatmentRate() / study.t1 + study.ControlRate() / study.t0;
    }
    static MAOutcomeEffect Effect(const MAGroupRates& study)
    {
        return {study.TreatmentRate() - study.ControlRate(), Variance(study)};
    }
};

/// The difference of the square roots of the rates, whose variance does not depend on them.
struct MARootRateDifference
{
    using Study = MAGroupRates;
    static MAOutcomeEffect Effect(const MAGroupRates& study)
    {
        return {std::sqrt(study.TreatmentRate()) - std::sqrt(study.ControlRate()),
                1.0 / (4.0 * study.t1) + 1.0 / (4.0 * study.t0)};
    }
};

/// The effect of a study by one of these measures. (That of tables is in MATableEffect.h.)
template <class Measure>
MAOutcomeEffect EffectBy(const MAGroupRates& study)
{
    return Measure::Effect(study);
}

} // namespace MA_NAMESPACE
