#pragma once

#include "meta_analysis/effectsize/MARates.h"
#include "meta_analysis/pooling/MAMantelHaenszelSums.h"
#include "meta_analysis/pooling/MATablePooling.h"

#include <span>
#include <vector>

namespace MA_NAMESPACE {

// The fixed-effect methods for two groups' rates, in the form of those for 2x2 tables (MABinaryPooling.h),
// with the variances of Greenland and Robins (1985), Biometrics 41, 55-68: Rothman, Greenland and Lash
// (2008), Modern Epidemiology, chapter 15. T = t1 + t0.

/// Mantel-Haenszel rate ratio, sum(a t0 / T) / sum(c t1 / T).
class MARateRatioPooling : public MARatioSums
{
public:
    using MARatioSums::Add;
    using Measure = MARateRatio;
    using Table = MAGroupRates;
    static double Weight(const MAGroupRates& study) { return study.t1 / study.Time() * study.c; }
    /// False without events in both groups.
    static bool IsInformative(const MAGroupRates& study) { return study.a != 0.0 || study.c != 0.0; }

    void Add(const MAGroupRates& study)
    {
        const double share = study.t0 / study.Time();
        r_ += share * study.a;
        s_ += Weight(study);
        p_ += share * (study.t1 / study.Time()) * (study.a + study.c);
    }
};

/// Mantel-Haenszel rate difference, sum((a t0 - c t1) / T) / sum(t1 t0 / T), with the variance
/// sum((a t0² + c t1²) / T²) / sum(t1 t0 / T)².
class MARateDifferencePooling : public MADifferenceSums
{
public:
    using MADifferenceSums::Add;
    using Measure = MARateDifference;
    using Table = MAGroupRates;
    static double Weight(const MAGroupRates& study) { return study.t1 / study.Time() * study.t0; }
    /// Two rates of 0 have a difference of 0.
    static bool IsInformative(const MAGroupRates& /*study*/) { return true; }

    void Add(const MAGroupRates& study)
    {
        const double control = study.t0 / study.Time();
        const double treatment = study.t1 / study.Time();
        weightedDifferences_ += study.a * control - study.c * treatment;
        weights_ += Weight(study);
        weightedVariances_ += study.a * control * control + study.c * treatment * treatment;
    }
};

/// How rates are pooled. The null hypothesis is on the scale of the analysis.
struct MARatePoolingChoice : MACountPoolingChoice
{
    MAConst::OUTCOMEMEASURE measure = MAConst::RATES_RATIO;
};

// As the functions of the same names for 2x2 tables. A measure without such a method pools nothing.

MAPooledTables PoolTables(std::span<const MAGroupRates> studies, const MARatePoolingChoice& choice);
int CountUninformative(std::span<const MAGroupRates> studies, const MARatePoolingChoice& choice);
std::vector<MATableEstimate> PoolTablePrefixes(std::span<const MAGroupRates> studies,
                                               const MARatePoolingChoice& choice);
std::vector<MAPooledModel> PoolTablesWithoutEach(std::span<const MAGroupRates> studies,
                                                 const MARatePoolingChoice& choice);

} // namespace MA_NAMESPACE
