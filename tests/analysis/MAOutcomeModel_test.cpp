#include "support/PooledFigures.h"

#include "meta_analysis/analysis/MAOutcomeModel.h"
#include "meta_analysis/settings/MAOutcomeMeasures.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

using Analysed = FinishedRun<MAOutcomeModel>;

/// Settings of a measure whose values stand in the columns from 0 on, in the order of the command's options.
MAModelSettings SettingsOf(OUTCOMEMEASURE measure, MODELTYPE model = MODEL_FIXED)
{
    MAModelSettings settings;
    settings.SetOutcomesType(OUTCOME_MEASURED);
    settings.SetOutcomeMeasure(measure);
    settings.SetModelType(model);
    settings.SetTau2Search(TAU2_SEARCH_GLOBAL);
    settings.SetEventsIndex(0);
    settings.SetTimeIndex(1);
    settings.SetCorrelationIndex(0);
    settings.SetSizeIndex(allOutcomeMeasures[measure].data == MAOutcomeData::Mean ? 0 : 1);
    settings.SetMeanIndex(1);
    settings.SetStdDevIndex(2);
    settings.SetTreatmentSuccessIndex(0);
    settings.SetTreatmentTimeIndex(1);
    settings.SetControlSuccessIndex(2);
    settings.SetControlTimeIndex(3);
    return settings;
}

const DataSet warfarin("warfarin_stroke");
const Rows twoGroups =
    warfarin.Columns({"treatment_events", "treatment_time", "control_events", "control_time"});
const Rows controls = warfarin.Columns({"control_events", "control_time"});
const Rows therapy = DataSet("hyperdynamic_therapy").Columns({"events", "n"});

TEST(MAOutcomeModel, AgreesWithTheReferenceFigures)
{
    const Rows correlations = DataSet("conscientiousness").Columns({"r", "n"});
    const struct
    {
        const char* file;
        const Rows& rows;
        std::vector<std::pair<const char*, OUTCOMEMEASURE>> measures;
    } cases[] = {
        {"hyperdynamic_therapy_outcomes",
         therapy,
         {{"PR", PROPORTION_RAW},
          {"PLN", PROPORTION_LOG},
          {"PLO", PROPORTION_LOGIT},
          {"PAS", PROPORTION_ARCSINE},
          {"PFT", PROPORTION_FREEMAN_TUKEY}}},
        {"warfarin_stroke_one_arm_outcomes",
         controls,
         {{"IR", RATE_RAW}, {"IRLN", RATE_LOG}, {"IRS", RATE_SQUARE_ROOT}, {"IRFT", RATE_FREEMAN_TUKEY}}},
        {"conscientiousness_outcomes",
         correlations,
         {{"COR", CORRELATION_RAW}, {"ZCOR", CORRELATION_FISHER_Z}}},
        {"warfarin_stroke_outcomes",
         twoGroups,
         {{"IRR", RATES_RATIO}, {"IRD", RATES_DIFFERENCE}, {"IRSD", RATES_ROOT_DIFFERENCE}}},
    };
    for (const auto& one : cases) {
        for (const auto& [key, measure] : one.measures) {
            SCOPED_TRACE(key);
            const nlohmann::json figures = LoadReference(one.file).at(key);
            const Analysed fixed(SettingsOf(measure), one.rows);
            EXPECT_TRUE(fixed.status.IsOK());
            EXPECT_TRUE(Close(fixed.model.GetEffectSize(), figures.at("yi"), studyTolerance, 1e-3));
            EXPECT_TRUE(Close(fixed.model.GetVariance(), figures.at("vi"), studyTolerance));
            ExpectStudyTests(fixed.model);
            const auto agree = [](const Analysed& run, const nlohmann::json& expected, double tolerance) {
                EXPECT_TRUE(Close(run.model.GetEstEffectSize(), {expected.at("estimate")}, tolerance));
                EXPECT_TRUE(Close(run.model.GetEstStdError(), {expected.at("se")}, tolerance));
            };
            agree(fixed, figures.at("fixed"), closedFormTolerance);
            EXPECT_TRUE(Close(fixed.model.GetHomoTestChisquareQ(), {figures.at("fixed").at("Q")},
                              closedFormTolerance));
            const Analysed random(SettingsOf(measure, MODEL_RANDOM), one.rows);
            agree(random, figures.at("REML"), iterativeTolerance);
            // The figures stop below a step of 1e-12, some of them a few steps before the root.
            EXPECT_NEAR(random.model.GetTau2Var().at(0), figures.at("REML").at("tau2").get<double>(), 1e-11);
        }
    }
}

/// The package pools without a correction of its own; no count is 0.
TEST(MAOutcomeModel, PoolsRatesAfterMantelAndHaenszel)
{
    const nlohmann::json figures = LoadReference("warfarin_stroke_mantel_haenszel");
    for (const auto& [key, measure] : {std::pair{"IRR", RATES_RATIO}, std::pair{"IRD", RATES_DIFFERENCE}}) {
        SCOPED_TRACE(key);
        MAModelSettings settings = SettingsOf(measure);
        settings.SetWeightType(WEIGHT_BINARY_FIXED);
        const nlohmann::json& expected = figures.at(key);
        const Analysed run(settings, twoGroups);
        ExpectEstimate(run.model, expected.at("estimate"), expected.at("se"), expected.at("z"),
                       expected.at("p"), expected.at("ci_lower"), expected.at("ci_upper"),
                       closedFormTolerance);
        // The Mantel-Haenszel sums of all studies but the first are those of a run without it.
        settings.SetLeaveOneOut(true);
        settings.SetCommulativeIndex(1);
        const Analysed steps(settings, twoGroups);
        const Analysed without(settings, Rows(twoGroups.begin() + 1, twoGroups.end()));
        EXPECT_EQ(steps.model.GetLeaveOneOutEffectSize()[0], without.model.GetEstEffectSize().back());
        EXPECT_TRUE(Close(steps.model.GetCumEstES()[0].back(), expected.at("estimate"), closedFormTolerance));
    }
}

/// Miller (1978), The American Statistician 32, 138, with the sums of both arcsines, to four digits.
TEST(MAOutcomeModel, TransformsAsFreemanAndTukeyAndBackAsMiller)
{
    const Rows rows = {{3, 11}, {6, 17}, {10, 21}, {1, 6}};
    const Analysed run(SettingsOf(PROPORTION_FREEMAN_TUKEY), rows);
    const Row sums = {1.1391, 1.2888, 1.5253, 0.9515};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_NEAR(2.0 * run.model.GetEffectSize().at(i), sums[i], 5e-5);
        EXPECT_TRUE(Close(run.model.GetNaturalEffectSize().at(i), rows[i][0] / rows[i][1], 1e-14));
    }
    // The package's inverse at the harmonic mean of n, or of the times.
    const Analysed proportions(SettingsOf(PROPORTION_FREEMAN_TUKEY), therapy);
    const auto natural = [](const Analysed& of) {
        return Row{of.model.GetNaturalEstEffectSize().at(0), of.model.GetNaturalEstCILower().at(0),
                   of.model.GetNaturalEstCIUpper().at(0)};
    };
    EXPECT_TRUE(Close(natural(proportions), {0.78168916159914859, 0.73106316431674090, 0.82896586754205548},
                      closedFormTolerance));
    const Analysed rates(SettingsOf(RATE_FREEMAN_TUKEY), controls);
    EXPECT_TRUE(Close(natural(rates), {0.056474612271299733, 0.046870052256761260, 0.066949884812290680},
                      closedFormTolerance));
}

/// Near 0, 1/2 and 1, where one form of the inverse or another loses digits; without events the value and its
/// lower limit are cut at 0, without non-events the upper one at 1.
TEST(MAOutcomeModel, GoesBackToEveryProportionAndRate)
{
    const Rows proportions = {{0, 7},        {1, 1e9},         {1, 2},   {5, 10},
                              {500001, 1e6}, {1e9 - 1.0, 1e9}, {12, 12}, {0.5, 3}};
    for (const OUTCOMEMEASURE measure : {PROPORTION_FREEMAN_TUKEY, PROPORTION_ARCSINE, PROPORTION_RAW}) {
        MAModelSettings settings = SettingsOf(measure);
        settings.SetBinZeroAdjType(ZERO_ADJUST_NONE);
        const Analysed run(settings, proportions);
        const std::vector<int> used = run.model.GetNonMissingStudyID();
        for (std::size_t i = 0; i < used.size(); ++i) {
            const Row& row = proportions[static_cast<std::size_t>(used[i])];
            EXPECT_TRUE(Close(run.model.GetNaturalEffectSize()[i], row[0] / row[1], 1e-13, 1e-14)) << i;
        }
        if (measure == PROPORTION_RAW)
            continue;
        EXPECT_EQ(run.model.GetNaturalCILower().at(0), 0.0);
        EXPECT_EQ(run.model.GetNaturalCIUpper().at(6), 1.0);
    }
    const Rows rates = {{0, 30}, {1, 1e7}, {1e7, 1}, {5, 5}};
    for (const OUTCOMEMEASURE measure : {RATE_FREEMAN_TUKEY, RATE_SQUARE_ROOT}) {
        const Analysed run(SettingsOf(measure), rates);
        for (std::size_t i = 0; i < rates.size(); ++i)
            EXPECT_TRUE(Close(run.model.GetNaturalEffectSize()[i], rates[i][0] / rates[i][1], 1e-13, 1e-14));
        EXPECT_EQ(run.model.GetNaturalCILower().at(0), 0.0);
    }
}

/// The studies that are left, and how many of them were corrected, by measure and rule.
TEST(MAOutcomeModel, CorrectsZerosByMeasureAndRule)
{
    const Rows groups = {{0, 9}, {9, 9}, {4, 9}};
    const Rows pairs = {{0, 9, 3, 8}, {0, 5, 0, 6}, {4, 9, 2, 7}};
    const struct
    {
        OUTCOMEMEASURE measure;
        const Rows& rows;
        int corrected[4]; ///< each, all if any, all, none
        std::size_t leftWithoutCorrection;
    } cases[] = {
        {PROPORTION_LOGIT, groups, {2, 3, 3, 0}, 1}, {PROPORTION_RAW, groups, {2, 3, 3, 0}, 1},
        {PROPORTION_LOG, groups, {2, 3, 3, 0}, 1},   {PROPORTION_ARCSINE, groups, {0, 0, 0, 0}, 3},
        {RATE_LOG, groups, {1, 3, 3, 0}, 2},         {RATE_RAW, groups, {1, 3, 3, 0}, 2},
        {RATE_SQUARE_ROOT, groups, {0, 0, 0, 0}, 3}, {RATES_RATIO, pairs, {2, 3, 3, 0}, 1},
        {RATES_DIFFERENCE, pairs, {2, 3, 3, 0}, 2},  {RATES_ROOT_DIFFERENCE, pairs, {0, 0, 0, 0}, 3},
    };
    for (const auto& one : cases) {
        for (int rule = ZERO_ADJUST_EACH; rule <= ZERO_ADJUST_NONE; ++rule) {
            SCOPED_TRACE(testing::Message() << one.measure << " rule " << rule);
            MAModelSettings settings = SettingsOf(one.measure);
            settings.SetBinZeroAdjType(static_cast<ZEROADJTYPE>(rule));
            const Analysed run(settings, one.rows);
            EXPECT_EQ(run.model.GetNZeroCorrected(), one.corrected[rule]);
            const std::size_t left = rule == ZERO_ADJUST_NONE ? one.leftWithoutCorrection : 3;
            EXPECT_EQ(run.model.GetEffectSize().size(), left);
            EXPECT_EQ(static_cast<std::size_t>(run.model.GetNInvalid()), 3 - left);
        }
    }
    const Analysed ratio(SettingsOf(RATES_RATIO), pairs);
    EXPECT_TRUE(Close(ratio.model.GetEffectSize()[0], std::log((0.5 / 9) / (3.5 / 8)), studyTolerance));
}

TEST(MAOutcomeModel, LeavesOutImpossibleRecordsAndCountsThem)
{
    const double r = 0.3;
    const struct
    {
        OUTCOMEMEASURE measure;
        Rows invalid;
        Row valid;
    } cases[] = {
        {PROPORTION_LOGIT, {{12, 10}, {-1, 10}, {0, 0}, {3, -5}, {infinity, 4}}, {3, 10}},
        {RATE_LOG, {{3, 0}, {3, -1}, {-1, 5}, {3, infinity}}, {3, 10}},
        {CORRELATION_FISHER_Z, {{1, 10}, {-1, 10}, {1.2, 10}, {r, 3}, {r, 1}, {r, infinity}}, {r, 10}},
        {CORRELATION_RAW, {{1, 10}, {r, 1}, {r, 0}}, {r, 2}},
        {MEAN_RAW, {{1, 5, 2}, {9, 5, 0}, {9, 5, -2}, {9, infinity, 2}}, {9, -5, 2}},
        {MEAN_LOG, {{9, 0, 2}, {9, -5, 2}}, {9, 5, 2}},
        {RATES_RATIO, {{3, 0, 3, 5}, {3, 5, 3, -1}, {-1, 5, 3, 5}}, {3, 5, 3, 5}},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.measure);
        Rows rows = one.invalid;
        rows.push_back(one.valid);
        rows.push_back(one.valid);
        rows.back()[0] = missing;
        const Analysed run(SettingsOf(one.measure), rows);
        EXPECT_EQ(static_cast<std::size_t>(run.model.GetNInvalid()), one.invalid.size());
        EXPECT_EQ(run.model.GetNMissing(), 1);
        EXPECT_EQ(run.model.GetNonMissingStudyID(), std::vector<int>{static_cast<int>(one.invalid.size())});
        EXPECT_EQ(Analysed(MAModelSettings(), rows).status.GetCode(), MAStatusCode::INPUT_NOT_GIVEN);
    }
}

/// Worked out by hand: the logarithm of a mean has the variance of its relative error.
TEST(MAOutcomeModel, HasDeltaMethodVariancesOfMeans)
{
    const Rows rows = {{10, 5, 2}, {20, 12, 3}};
    const Analysed raw(SettingsOf(MEAN_RAW), rows);
    const Analysed log(SettingsOf(MEAN_LOG), rows);
    EXPECT_TRUE(Close(raw.model.GetVariance(), {0.4, 0.45}, studyTolerance));
    EXPECT_TRUE(Close(log.model.GetVariance(), {0.016, 0.003125}, studyTolerance));
    EXPECT_TRUE(Close(log.model.GetNaturalEffectSize(), {5.0, 12.0}, studyTolerance));
}

/// Every model goes back at the harmonic mean of its own studies: a step has the natural values of a run on
/// these studies alone.
TEST(MAOutcomeModel, StepsGoBackAtTheSizesOfTheirStudies)
{
    for (const MODELTYPE model : {MODEL_FIXED, MODEL_RANDOM}) {
        MAModelSettings settings = SettingsOf(PROPORTION_FREEMAN_TUKEY, model);
        settings.SetLeaveOneOut(true);
        const auto alone = [&](std::size_t first, std::size_t last) {
            const auto begin = therapy.begin();
            return Analysed(settings, Rows(begin + static_cast<std::ptrdiff_t>(first),
                                           begin + static_cast<std::ptrdiff_t>(last)))
                .model.GetNaturalEstCIUpper()
                .at(0);
        };
        const Analysed run(settings, therapy);
        EXPECT_TRUE(Close(run.model.GetLeaveOneOutNaturalCIUpper().at(0), alone(1, 14), 1e-13));

        Rows grouped = therapy;
        for (std::size_t i = 0; i < grouped.size(); ++i)
            grouped[i].push_back(i < 5 ? 1 : 2);
        MAModelSettings withGroups = settings;
        withGroups.SetSubGroupIndex(2);
        const Analysed groups(withGroups, grouped);
        EXPECT_TRUE(
            Close(groups.model.GetNaturalEstCIUpper(), {alone(0, 5), alone(5, 14), alone(0, 14)}, 1e-13));
        withGroups.SetCommulativeIndex(2);
        const Analysed cumulative(withGroups, grouped);
        EXPECT_TRUE(Close(cumulative.model.GetCumNaturalEstCiUpper().at(0).at(2), alone(0, 3), 1e-13));
        EXPECT_TRUE(Close(cumulative.model.GetCumNaturalEstCiUpper().at(2).at(0), alone(0, 14), 1e-13));
    }
}

/// At the pooled value itself the test has z = 0, and half of the new studies are above.
TEST(MAOutcomeModel, TakesNullAndThresholdOnTheNaturalScale)
{
    for (const MAOutcomeMeasure& measure : allOutcomeMeasures) {
        SCOPED_TRACE(measure.type);
        const Rows rows = measure.data == MAOutcomeData::Correlation ? Rows{{0.2, 20}, {0.5, 30}, {0.4, 9}}
                          : measure.data == MAOutcomeData::Mean
                              ? Rows{{9, 3, 1}, {20, 4, 2}, {15, 7, 3}}
                              : Rows{{4, 20, 3, 30}, {9, 30, 7, 25}, {2, 9, 8, 40}};
        MAModelSettings settings = SettingsOf(measure.type);
        settings.SetNullHypothesis(Analysed(settings, rows).model.GetNaturalEstEffectSize().at(0));
        EXPECT_NEAR(Analysed(settings, rows).model.GetEstZVal().at(0), 0.0, 1e-12);
        if (measure.poolsCounts) {
            settings.SetWeightType(WEIGHT_BINARY_FIXED);
            settings.SetNullHypothesis(Analysed(settings, rows).model.GetNaturalEstEffectSize().at(0));
            EXPECT_NEAR(Analysed(settings, rows).model.GetEstZVal().at(0), 0.0, 1e-12);
        }
        MAModelSettings random = SettingsOf(measure.type, MODEL_RANDOM);
        random.SetProbabilityAbove(Analysed(random, rows).model.GetNaturalEstEffectSize().at(0));
        EXPECT_NEAR(Analysed(random, rows).model.GetPIProbability().at(0), 0.5, 1e-12);
        random.SetWeightType(WEIGHT_BINARY_FIXED);
        EXPECT_TRUE(Analysed(random, rows).Warns(MAStatusCode::COUNTS_NOT_POOLED));
    }
}

} // namespace
