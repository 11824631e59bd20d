// Analyses of studies that report something else than the counts, means and standard errors that are pooled.

#include "support/PooledFigures.h"
#include "support/Poolings.h"

#include "meta_analysis/settings/MAStatusCode.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

using Numbers = std::vector<int>;

/// The tables with the size of a group behind each pair of counts.
Rows WithSizes(Rows tables)
{
    for (Row& table : tables)
        table = {table[0], table[1], table[0] + table[1], table[2], table[3], table[2] + table[3]};
    return tables;
}

/// Of records that `WithSizes` made: with the non-events of a group, or with its size in place of them.
MAModelSettings SizedTables(bool treatmentBySize, bool controlBySize)
{
    MAModelSettings settings;
    settings.SetTreatmentSuccessIndex(0);
    settings.SetTreatmentFailureIndex(treatmentBySize ? -1 : 1);
    settings.SetTreatmentNIndex(2);
    settings.SetControlSuccessIndex(3);
    settings.SetControlFailureIndex(controlBySize ? -1 : 4);
    settings.SetControlNIndex(5);
    return settings;
}

/// Estimate, limits and p-value.
MAModelSettings RatioSettings()
{
    MAModelSettings settings = EffectSettings();
    settings.SetOutcomesType(OUTCOME_BINARY);
    settings.SetInputVarianceIndex(-1);
    settings.SetInputCILowerIndex(1);
    settings.SetInputCIUpperIndex(2);
    settings.SetInputPValueIndex(3);
    settings.SetInputIsRatio(true);
    return settings;
}

/// Size, mean and deviation of both groups, then median and quartiles of both.
MAModelSettings MedianSettings()
{
    MAModelSettings settings = MeansSettings();
    settings.SetTreatmentMedianIndex(6);
    settings.SetTreatmentQ1Index(7);
    settings.SetTreatmentQ3Index(8);
    settings.SetControlMedianIndex(9);
    settings.SetControlQ1Index(10);
    settings.SetControlQ3Index(11);
    return settings;
}

} // namespace

/// A small-study test reads the tables again.
TEST(ConvertedInput, SizesInPlaceOfNonEventsChangeNothing)
{
    const Rows tables = {
        {4, 119, 11, 128}, {6, 300, 29, 274}, {3, 228, 11, 209}, {62, 138, 72, 128}, {0, 50, 9, 40}};
    for (int type = REG_TEST_EFFECT_ON_STD_ERROR; type <= REG_TEST_EFFECT_ON_SIZE; ++type) {
        MAModelSettings counted = TableSettings();
        counted.SetRegBaseTestType(static_cast<RegBaseTestType>(type));
        const SmallStudyRun<MABinModel> expected(counted, tables);
        for (const auto& [treatment, control] : {std::pair{true, true}, {true, false}, {false, true}}) {
            MAModelSettings settings = SizedTables(treatment, control);
            settings.SetRegBaseTestType(counted.GetRegBaseTestType());
            const SmallStudyRun<MABinModel> run(settings, WithSizes(tables));
            EXPECT_TRUE(SameModel(run.model, 0, expected.model));
            EXPECT_EQ(run.model.GetRegBasedTestCoef(), expected.model.GetRegBasedTestCoef());
        }
    }
}

/// In record order, whichever pass excludes a record: the first reads counts, the second drops what has no
/// effect size.
TEST(ConvertedInput, EachRecordThatIsNoStudyHasAReason)
{
    const BinRun sized(SizedTables(true, false), {{4, 6, 10, 3, 7, 10},
                                                  {11, missing, 10, 3, 7, 10},
                                                  {-1, 6, 5, 3, 7, 10},
                                                  {infinity, 6, infinity, 3, 7, 10},
                                                  {infinity, 6, 1, 3, infinity, 10}});
    EXPECT_EQ(sized.model.GetExcludedRecord(), (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(sized.model.GetExclusionReason(),
              (Numbers{EXCLUSION_EVENTS_ABOVE_SIZE, EXCLUSION_NEGATIVE_COUNT, EXCLUSION_EVENTS_ABOVE_SIZE,
                       EXCLUSION_EVENTS_ABOVE_SIZE}));
    MAModelSettings uncorrected = SizedTables(false, false);
    uncorrected.SetBinZeroAdjType(ZERO_ADJUST_NONE);
    const BinRun passes(uncorrected, {{0, 9, 9, 3, 7, 10}, {0, 9, 9, 0, 8, 8}, {3, 7, 10, 4, 6, 10}});
    EXPECT_EQ(passes.model.GetExcludedRecord(), (Numbers{0, 1}));
    EXPECT_EQ(passes.model.GetExclusionReason(), (Numbers{EXCLUSION_NOT_POOLABLE, EXCLUSION_ZERO_CELLS}));

    Rows groups = {{9, 1, 2, 9, 1, 1},
                   {9, missing, 2, 9, 1, 1, 5, 6, 7},
                   {9, missing, 2, 1, 1, 1},
                   {9, 1, 0, 9, 1, 1, 6, 5, 7}};
    for (Row& group : groups)
        group.resize(12, missing);
    EXPECT_EQ(
        ContRun(MedianSettings(), groups).model.GetExclusionReason(),
        (Numbers{EXCLUSION_SUMMARY_NOT_ASCENDING, EXCLUSION_MISSING_VALUE, EXCLUSION_SPREAD_NOT_POSITIVE}));
}

/// The variances of the data set are computed from the published intervals.
TEST(ConvertedInput, PublishedRatiosAndIntervalsGiveTheirLogarithmsAndVariances)
{
    DataSet published("passive_smoking_ratios");
    for (Row& row : published.rows)
        row.push_back(2); // decimals in print
    const DataSet computed("passive_smoking");
    MAModelSettings settings = RatioSettings();
    settings.SetInputEffectSizeIndex(published.IndexOf("or"));
    settings.SetInputCILowerIndex(published.IndexOf("or_lower"));
    settings.SetInputCIUpperIndex(published.IndexOf("or_upper"));
    settings.SetInputPValueIndex(-1);
    settings.SetInputDecimalsIndex(static_cast<int>(published.columns.size()));
    const BinRun run(settings, published.rows);
    // The data set has 15 digits; the difference of logarithms loses one.
    EXPECT_TRUE(Close(run.model.GetEffectSize(), ColumnOf(computed.rows, 3), 1e-13));
    EXPECT_TRUE(Close(run.model.GetVariance(), ColumnOf(computed.rows, 4), 1e-13));
    EXPECT_EQ(run.model.GetAsymmetricIntervalStudyID(), (Numbers{3, 11})); // Cardenas, Wu
    EXPECT_TRUE(run.Warns(MAStatusCode::INTERVAL_ASYMMETRIC));
    EXPECT_EQ(run.model.GetEffectConversion(), Numbers(published.rows.size(), CONVERSION_INTERVAL));
}

TEST(ConvertedInput, EachStudyTakesTheFirstSpreadThatItHas)
{
    MAModelSettings settings = RatioSettings();
    settings.SetInputStdErrorIndex(4);
    const BinRun run(settings, {{0.5, 0.25, 1, 0.9, 0.3},
                                {0.5, 0.25, 1, 0.9, missing},
                                {0.5, missing, 1, 0.9, missing},
                                {0.5, missing, 1, missing, missing},
                                {0.5, 0.25, 0.125, 0.9, missing}});
    EXPECT_EQ(run.model.GetEffectConversion(),
              (Numbers{CONVERSION_NONE, CONVERSION_INTERVAL, CONVERSION_P_VALUE}));
    EXPECT_EQ(run.model.GetExcludedRecord(), (Numbers{3, 4}));
    EXPECT_TRUE(Close(run.model.GetEffectSize(), Row(3, std::log(0.5)), machineEpsilon));
}

/// One study prints standard errors for deviations; the other with a difference above 3 does not.
TEST(ConvertedInput, StandardErrorsInPlaceOfDeviationsAreNamed)
{
    Rows studies = {
        {40, 10, 4, 38, 8, 4.2}, {50, 10, 0.4, 48, 8, 0.4}, {30, 25, 3.1, 35, 8, 5}, {60, 9, 3.8, 60, 8, 4}};
    for (Row& study : studies)
        study.resize(12, missing);
    const ContRun run(MedianSettings(), studies);
    EXPECT_EQ(run.model.GetDoubtfulStdDevStudyID(), Numbers{1});
    EXPECT_TRUE(run.Warns(MAStatusCode::STD_DEV_DOUBTFUL));
    studies[1] = {50, 8.1, 0.4, 48, 8, 0.4}; // a small difference may be one of small deviations
    studies[1].resize(12, missing);
    EXPECT_FALSE(ContRun(MedianSettings(), studies).Warns(MAStatusCode::STD_DEV_DOUBTFUL));
}

TEST(ConvertedInput, GroupsAreConvertedOneByOneAndSkewedStudiesNamed)
{
    const ContRun run(MedianSettings(), {{40, 10, 4, 38, 8, 4, 1, 0, 9, 1, 0, 9},
                                         {40, 10, missing, 38, 8, 4, 9, 6, 12, 1, 0, 9},
                                         {40, 10, missing, 38, missing, 4, 9, 6, 12, 6.5, 6, 12}});
    EXPECT_EQ(run.model.GetTreatmentConversion(), (Numbers{0, CONVERSION_QUARTILES, CONVERSION_QUARTILES}));
    EXPECT_EQ(run.model.GetControlConversion(), (Numbers{0, 0, CONVERSION_QUARTILES}));
    EXPECT_EQ(run.model.GetSkewedStudyID(), Numbers{2});
    EXPECT_TRUE(run.Warns(MAStatusCode::SUMMARY_SKEWED));
}
