#include "support/Compare.h"

#include "meta_analysis/effectsize/MAConversions.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

constexpr EXCLUSION none = EXCLUSION_NONE;
constexpr double tolerance = 4 * machineEpsilon; // a quotient of sums, and a quantile

struct IntervalCase
{
    double estimate;
    double lower;
    double upper;
    bool isRatio;
    EXCLUSION status;
    bool isAsymmetric;
    double decimals = missing;
    double level = 0.95;
};

const IntervalCase intervals[] = {
    {0.5, 0.25, 1, true, none, false},
    {0.5, 0.25, 1, false, none, true}, // ratios taken for differences
    {2, 1.05, 3, false, none, false},  // 2.6 % of the width
    {2, 1.11, 3, false, none, true, 2},
    {2, 1.11, 3, false, none, false, 1}, // 2.05 between 1.06 and 3.05 is possible
    {0.1, 0.03, 0.2, true, none, false, 1},
    {0.1, 0.03, 0.2, true, none, true, 3},
    {0.04, 0.03, 0.2, true, none, false, 1}, // an estimate that may be 0
    {3, 1, 3, false, none, true, 6},
    {1, 2, 0, false, EXCLUSION_LIMITS_NOT_ASCENDING, false},
    {1, 1, 1, false, EXCLUSION_LIMITS_NOT_ASCENDING, false},
    {1, 2, 3, false, EXCLUSION_OUTSIDE_LIMITS, false},
    {0.2, 0, 0.8, true, EXCLUSION_RATIO_NOT_POSITIVE, false},
    {-2, -3, -1, true, EXCLUSION_RATIO_NOT_POSITIVE, false},
    {-2, -3, -1, false, none, false},
    {1, 0, infinity, false, EXCLUSION_NOT_POOLABLE, false},
    {1, 0, notANumber, false, EXCLUSION_MISSING_VALUE, false},
    {missing, 0, 2, false, EXCLUSION_MISSING_VALUE, false},
    {1, 0, 2, false, EXCLUSION_LEVEL_OUTSIDE, false, missing, 95},
    {1, 0, 2, false, EXCLUSION_LEVEL_OUTSIDE, false, missing, notANumber},
};

struct SummaryCase
{
    MAGroupSummary summary;
    EXCLUSION status;
    CONVERSION from;
    double mean = missing;
    double stdDev = missing;
    bool isSkewed = false;
};

/// Means and deviations by 50-digit arithmetic; tests of skewness by hand.
const SummaryCase summaries[] = {
    {{25, missing, 8.125, 10.5, 12, missing}, none, CONVERSION_QUARTILES, 10.186925, 3.046207673286877},
    {{25, 2.25, missing, 10.5, 12, 19}, none, CONVERSION_EXTREMES, 10.532937338933481, 4.263785861693083},
    {{25, 2.25, 8.125, 10.5, 12, 19}, none, CONVERSION_FIVE_NUMBERS, 10.267936957304747, 3.65499676748998},
    // Critical values for 100: 0.2389, 0.2654 and 0.2970. The weighted statistic of all five is 1.085 s.
    {{100, 0, missing, 3.8, missing, 10}, none, CONVERSION_EXTREMES, 3.94, 2.0, true},
    {{100, 0, missing, 3.9, missing, 10}, none, CONVERSION_EXTREMES, 4.02, 2.0, false},
    {{100, missing, 0, 3.6, 10, missing}, none, CONVERSION_QUARTILES, 4.59, 7.5, true},
    {{100, missing, 0, 3.7, 10, missing}, none, CONVERSION_QUARTILES, 4.61, 7.5, false},
    {{100, -50, 0, 3.6, 10, 60}, none, CONVERSION_FIVE_NUMBERS, 4.58, 14.8, false},
    {{100, -50, 0, 3.5, 10, 60}, none, CONVERSION_FIVE_NUMBERS, 4.58, 14.8, true},
    {{4, missing, 0, 0, 10, missing}, none, CONVERSION_QUARTILES, 3.99, 10.92, false}, // too few
    {{25, 1, 1, 1, 1, 19}, none, CONVERSION_FIVE_NUMBERS, 2.5, 2.3, true},
    {{25, missing, 10, 10, 10, missing}, EXCLUSION_SPREAD_NOT_POSITIVE, CONVERSION_QUARTILES},
    {{1, 1, missing, 2, missing, 3}, EXCLUSION_GROUP_TOO_SMALL, CONVERSION_EXTREMES},
    {{25, 9, 8, 10, 12, 19}, EXCLUSION_SUMMARY_NOT_ASCENDING, CONVERSION_FIVE_NUMBERS},
    {{25, missing, 12, 10, 8, missing}, EXCLUSION_SUMMARY_NOT_ASCENDING, CONVERSION_QUARTILES},
    {{25, 11, missing, 10, missing, 19}, EXCLUSION_SUMMARY_NOT_ASCENDING, CONVERSION_EXTREMES},
    {{25, -infinity, missing, 10, missing, 19}, EXCLUSION_NOT_POOLABLE, CONVERSION_EXTREMES},
    {{25, missing, 8, missing, 12, missing}, EXCLUSION_MISSING_VALUE, CONVERSION_NONE},
    {{25, missing, 8, 10, missing, 19}, EXCLUSION_MISSING_VALUE, CONVERSION_NONE},
    {{missing, 1, 8, 10, 12, 19}, EXCLUSION_MISSING_VALUE, CONVERSION_NONE},
};

} // namespace

TEST(MAConversions, IntervalsAreJudgedWithWhatPrintExplains)
{
    for (const IntervalCase& one : intervals) {
        SCOPED_TRACE(testing::Message() << one.estimate << " (" << one.lower << ", " << one.upper << ")");
        const MAConvertedEffect effect =
            EffectOfInterval(one.estimate, one.lower, one.upper, one.level, one.isRatio, one.decimals);
        EXPECT_EQ(effect.status, one.status);
        EXPECT_EQ(effect.isAsymmetric, one.isAsymmetric);
        EXPECT_EQ(KXMV::IsMissing(effect.stdError), one.status != EXCLUSION_NONE);
    }
    EXPECT_TRUE(
        Close(EffectOfInterval(0.84, 0.61, 1.15, 0.9, true).stdError, 0.19274002677219531, tolerance));
    EXPECT_TRUE(Close(EffectOfInterval(2, 1, 3, 0.99, false).stdError, 0.3882244831294643, tolerance));
}

TEST(MAConversions, PValuesGiveStandardErrorsUnlessThereIsNone)
{
    EXPECT_TRUE(Close(EffectOfPValue(1.5, 0.03, true).stdError, 0.18684249849514154, tolerance));
    EXPECT_TRUE(Close(EffectOfPValue(-1, 0.31731050786291410, false).stdError, 1.0, 1e-15)); // z of 1
    for (const double p : {0.0, 1.0, -0.1, 1.5, infinity})
        EXPECT_EQ(EffectOfPValue(2, p, false).status, EXCLUSION_P_VALUE_OUTSIDE) << p;
    EXPECT_EQ(EffectOfPValue(0, 0.5, false).status, EXCLUSION_ESTIMATE_ZERO);
    EXPECT_EQ(EffectOfPValue(1, 0.5, true).status, EXCLUSION_ESTIMATE_ZERO);
    EXPECT_EQ(EffectOfPValue(0, 0.5, true).status, EXCLUSION_RATIO_NOT_POSITIVE);
    EXPECT_EQ(EffectOfPValue(infinity, 0.5, false).status, EXCLUSION_NOT_POOLABLE);
    EXPECT_EQ(EffectOfPValue(2, missing, false).status, EXCLUSION_MISSING_VALUE);
}

TEST(MAConversions, SummariesBecomeMeansAndDeviations)
{
    for (const SummaryCase& one : summaries) {
        const MAGroupSummary& given = one.summary;
        SCOPED_TRACE(testing::Message() << given.size << ": " << given.minimum << " " << given.q1 << " "
                                        << given.median << " " << given.q3 << " " << given.maximum);
        const MAConvertedMean found = MeanOfSummary(given);
        EXPECT_EQ(found.status, one.status);
        EXPECT_EQ(found.from, one.from);
        EXPECT_EQ(found.isSkewed, one.isSkewed);
        const double allowed = given.size == 25 && one.mean > 10 ? tolerance : 0.02; // of those by hand
        EXPECT_TRUE(Close(found.mean, one.mean, allowed));
        EXPECT_TRUE(Close(found.stdDev, one.stdDev, allowed));
    }
}

TEST(MAConversions, DecimalsAreThoseOfTheShortestDecimal)
{
    const std::pair<double, int> cases[] = {{0.25, 2},       {-1.5, 1},      {100, 0},       {123.456, 3},
                                            {1e-7, 7},       {1.25e-7, 9},   {1e300, 0},     {0, 0},
                                            {0.1 + 0.2, 17}, {-infinity, 0}, {notANumber, 0}};
    for (const auto& [value, decimals] : cases)
        EXPECT_EQ(DecimalsOf(value), decimals) << value;
}
