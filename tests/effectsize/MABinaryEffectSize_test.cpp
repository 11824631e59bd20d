#include "support/Compare.h"
#include "support/StudyVectors.h"
#include "support/Tables.h"

#include "meta_analysis/effectsize/MABinaryEffectSize.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

MABinaryEffectSize Computed(Tables& tables, BINESTYPE method)
{
    MABinaryEffectSize effectSizes;
    tables.GiveTo(effectSizes);
    effectSizes.SetZeroAdjType(ZERO_ADJUST_NONE);
    effectSizes.SetEstimationMethod(method);
    EXPECT_TRUE(effectSizes.ComputeEffectSizeStatistics().IsOK());
    return effectSizes;
}

struct Correction
{
    const char* name;
    ZEROADJTYPE type;
    Rows before;
    Rows after; ///< with a constant of 0.25
    ZEROADJTYPE typeAfter;
};

const Row full = {1, 2, 3, 4};
const Row withZero = {1, 0, 3, 4};
const Row fullPlus = {1.25, 2.25, 3.25, 4.25};
const Row zeroPlus = {1.25, 0.25, 3.25, 4.25};
const Correction corrections[] = {
    {"each with a zero", ZERO_ADJUST_EACH, {full, withZero}, {full, zeroPlus}, ZERO_ADJUST_EACH},
    {"a zero", ZERO_ADJUST_ALL_IF_ANY, {full, withZero}, {fullPlus, zeroPlus}, ZERO_ADJUST_ALL},
    {"no zero", ZERO_ADJUST_ALL_IF_ANY, {full, full}, {full, full}, ZERO_ADJUST_ALL_IF_ANY},
    {"all", ZERO_ADJUST_ALL, {full, full}, {fullPlus, fullPlus}, ZERO_ADJUST_ALL},
    {"none", ZERO_ADJUST_NONE, {full, withZero}, {full, withZero}, ZERO_ADJUST_NONE},
    {"unknown type", static_cast<ZEROADJTYPE>(9), {withZero}, {withZero}, static_cast<ZEROADJTYPE>(9)},
    // The product of these counts underflows, but none of them is zero.
    {"tiny counts", ZERO_ADJUST_EACH, {Row(4, 1e-100)}, {Row(4, 1e-100)}, ZERO_ADJUST_EACH},
    {"no studies", ZERO_ADJUST_ALL_IF_ANY, {}, {}, ZERO_ADJUST_ALL_IF_ANY},
};

/// What an uncorrected table leaves undefined.
struct Undefined
{
    const char* name;
    BINESTYPE method;
    Row table;
    double effect;
    double logEffect;
    double logVariance;
    double treatmentRatio;
    double controlRatio;
};

const Undefined undefinedCases[] = {
    // The odds ratio is 0 although its logarithm is not defined.
    {"no treatment events", BIN_ODDS_RATIO, {0, 10, 5, 10}, 0, missing, missing, 0, 0.5},
    {"no control non-events", BIN_ODDS_RATIO, {5, 10, 5, 0}, 0, missing, missing, 0.5, infinity},
    {"no treatment non-events", BIN_ODDS_RATIO, {5, 0, 5, 5}, missing, missing, missing, missing, missing},
    {"no control events", BIN_ODDS_RATIO, {5, 5, 0, 5}, missing, missing, missing, missing, missing},
    {"no treatment events", BIN_RISK_RATIO, {0, 10, 5, 15}, missing, missing, missing, missing, 0.25},
    {"no control events", BIN_RISK_RATIO, {5, 15, 0, 10}, missing, missing, missing, 0.25, missing},
    {"empty treatment group", BIN_RISK_RATIO, {0, 0, 5, 5}, missing, missing, missing, missing, 0.5},
    {"events only", BIN_RISK_RATIO, {1, 0, 106, 0}, 1, 0, 0, 1, 1},
    {"a single person", BIN_PETO_ODDS_RATIO, {1, 0, 0, 0}, missing, missing, missing, missing, missing},
    {"no events", BIN_PETO_ODDS_RATIO, {0, 9, 0, 8}, missing, missing, missing, missing, missing},
    {"empty group", BIN_PETO_ODDS_RATIO, {0, 0, 4, 8}, missing, missing, missing, missing, missing},
};

} // namespace

TEST(MABinaryEffectSize, ZeroCellCorrectionChangesTheCallersCounts)
{
    for (const Correction& row : corrections) {
        SCOPED_TRACE(row.name);
        Tables tables(row.before);
        MABinaryEffectSize effectSizes;
        tables.GiveTo(effectSizes);
        effectSizes.SetZeroCountDelta(0.25);
        effectSizes.SetZeroAdjType(row.type);
        effectSizes.SetEstimationMethod(BIN_PETO_ODDS_RATIO);
        EXPECT_TRUE(effectSizes.ComputeEffectSizeStatistics().IsOK());
        EXPECT_EQ(tables.ToRows(), row.after);
        EXPECT_EQ(effectSizes.GetUpdatedZeroAdjType(), row.typeAfter);
    }
}

TEST(MABinaryEffectSize, UndefinedEntriesAreMissing)
{
    for (const Undefined& row : undefinedCases) {
        SCOPED_TRACE(row.name);
        Tables tables({row.table});
        const MABinaryEffectSize effectSizes = Computed(tables, row.method);
        EXPECT_TRUE(Same(effectSizes.GetEffectSizeVal(), {row.effect}));
        EXPECT_TRUE(Same(effectSizes.GetLogEffectSizeVal(), {row.logEffect}));
        EXPECT_TRUE(Same(effectSizes.GetLogEffectSizeVariance(), {row.logVariance}));
        constexpr double tolerance = 4 * machineEpsilon; // risks come from their logarithms
        const bool isPeto = row.method == BIN_PETO_ODDS_RATIO;
        EXPECT_TRUE(isPeto || Close(effectSizes.GetTreatmentGRatio(), {row.treatmentRatio}, tolerance));
        EXPECT_TRUE(isPeto || Close(effectSizes.GetControlGRatio(), {row.controlRatio}, tolerance));
        const bool isDefined = row.logVariance != missing;
        EXPECT_TRUE(Same(effectSizes.GetEffectSizeVariance(), {isDefined ? 1.0 : missing}));
        EXPECT_TRUE(Same(effectSizes.GetEffectSizeCIUpper(), {isDefined ? row.effect : missing}));
        EXPECT_TRUE(Same(effectSizes.GetLogEffectSizeCILower(), {isDefined ? row.logEffect : missing}));
        // Missing by missing is 1, or 0 by 0.
        EXPECT_TRUE(Same(effectSizes.GetLogEffectSizeZVal(), {isDefined ? notANumber : 1.0}));
    }
}

/// The statistic and the significance of a ratio are exponentials, too.
TEST(MABinaryEffectSize, RatiosHaveTestsOnBothScales)
{
    Tables tables({full});
    const MABinaryEffectSize effectSizes = Computed(tables, BIN_ODDS_RATIO);
    EXPECT_EQ(effectSizes.GetEffectSizeZVal().at(0), std::exp(effectSizes.GetLogEffectSizeZVal().at(0)));
    EXPECT_EQ(effectSizes.GetEffectSizeSig().at(0), std::exp(effectSizes.GetLogEffectSizeSig().at(0)));
}

TEST(MABinaryEffectSize, RiskDifferenceHasZeroForUndefinedEntries)
{
    Tables tables({{3, 7, 2, 18}, {0, 0, 4, 12}});
    const MABinaryEffectSize effectSizes = Computed(tables, BIN_RISK_DIFFERENCE);
    EXPECT_NEAR(effectSizes.GetEffectSizeVal()[0], 0.2, 1e-16);
    EXPECT_EQ(effectSizes.GetEffectSizeVal()[1], 0.0);
    EXPECT_EQ(effectSizes.GetEffectSizeVariance()[1], 0.0);
    EXPECT_EQ(effectSizes.GetTreatmentGRatio()[1], 0.0);
    EXPECT_EQ(effectSizes.GetControlGRatio()[1], 0.25);
    EXPECT_TRUE(effectSizes.GetLogEffectSizeVal().empty());
    EXPECT_TRUE(effectSizes.GetLogEffectSizeZVal().empty());
}

TEST(MABinaryEffectSize, StudyVectorsAreChecked)
{
    using C = MABinaryEffectSize;
    ExpectStudyVectorsChecked({&C::SetTreatmentGSuccessCounts, &C::SetControlGSuccessCounts,
                               &C::SetTreatmentGFailureCounts, &C::SetControlGFailureCounts},
                              &C::ComputeEffectSizeStatistics, MAStatusCode::LENGTH_MISMATCH);
}
