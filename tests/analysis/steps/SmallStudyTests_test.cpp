#include "support/FaultyRecordIter.h"
#include "support/LeastSquares.h"
#include "support/PooledFigures.h"
#include "support/Poolings.h"
#include "support/Published.h"

#include "meta_analysis/platform/common/KXDistFun.h"
#include "meta_analysis/settings/MAStatusCode.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

/// Tables, then a group.
const Rows studies = {{4, 119, 11, 128, 1},  {6, 300, 29, 274, 2}, {3, 228, 11, 209, 1},
                      {62, 138, 72, 128, 2}, {0, 50, 9, 40, 1},    {5, 40, 4, 44, 3},
                      {8, 60, 20, 50, 2},    {17, 70, 19, 66, 1},  {9, 90, 14, 85, 2}};

/// The tables, with 0.5 added to the cells of those that the adjustment is for.
Rows Adjusted(Rows tables, int adjustment)
{
    const auto hasZero = [](const Row& table) { return std::count(table.begin(), table.end(), 0.0) > 0; };
    const bool anyZero = std::any_of(tables.begin(), tables.end(), hasZero);
    for (Row& table : tables) {
        const bool isAdjusted[] = {hasZero(table), anyZero, true, false}; // in the order of the types
        for (double& cell : table)
            cell += isAdjusted[adjustment] ? 0.5 : 0.0;
    }
    return tables;
}

/// Tests 1 to 3 of tables and their effects.
LeastSquares Regress(const Rows& tables, const Row& effects, int test)
{
    Rows records;
    LeastSquares::Vector weights;
    for (std::size_t i = 0; i < tables.size(); ++i) {
        const double treated = tables[i][0] + tables[i][1];
        const double controls = tables[i][2] + tables[i][3];
        const double events = tables[i][0] + tables[i][2];
        const double others = tables[i][1] + tables[i][3];
        const double n = events + others;
        const double score = tables[i][0] - events * treated / n;
        const double scale = test == 1 ? others / (n * (n - 1)) : 1 / others;
        const double variance = treated * controls * events / n * scale;
        const double response = (test == 1 ? score : score * n / others) / variance;
        records.push_back(test == 3 ? Row{effects[i], 0, 1 / n} : Row{response, 0, 1 / std::sqrt(variance)});
        weights.push_back(test == 3 ? others * events / n : variance);
    }
    return LeastSquares(records, weights);
}

Row TestOf(const MABaseModel& model)
{
    return {model.GetRegBasedTestCoef(), model.GetRegBasedTestStdError(), model.GetRegBasedTestVal(),
            model.GeRegBasedTestSig(),   model.GetRegBasedTestCILower(),  model.GetRegBasedTestCIUpper()};
}

bool HasNoTest(const MABaseModel& model)
{
    return TestOf(model) == Row(6, missing) && model.GetRegBasedTestDf() == 0;
}

/// The rows of a group, or of all, in the lists of tests, in the order of `TestOf`.
Results TestsOf(const MABinModel& model, std::size_t group)
{
    Results tests = ResultsOf(model);
    std::erase_if(tests, [](const Result& result) { return result.name.rfind("GetRegr", 0) != 0; });
    for (Result& result : tests)
        result.rows = {result.rows.at(group)};
    return tests;
}

/// The coefficient of the test covariate, with the statistic of t and its interval.
void ExpectTest(const MABaseModel& model, double slope, double stdError, double df, double tolerance)
{
    const double margin = KXDistFun::IdfT(0.975, df) * stdError;
    const double t = slope / stdError;
    const double significance = 2 * KXDistFun::CdfT(-std::abs(t), df);
    const Row expected = {slope, stdError, t, significance, slope - margin, slope + margin};
    const Row scales = {stdError, 0, 1, 1, margin, margin};
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_TRUE(Close(TestOf(model)[i], expected[i], tolerance, scales[i])) << "value " << i;
    EXPECT_EQ(model.GetRegBasedTestDf(), df);
}

using BinTest = SmallStudyRun<MABinModel>;

KXStatus Tested(BinTest& run, int type)
{
    return run.model.RegBasedBinTest(run.records, run.variables, static_cast<RegBaseTestType>(type));
}

} // namespace

/// The regression of the effect on its standard error, by the model of the run.
TEST(SmallStudyTests, EffectOnStandardErrorMeetsTheReferenceFigures)
{
    const char* const methods[] = {
        "HE", "HS", "DL", "SJ", "ML", "REML", "EB", "fixed", "fixed_multiplicative"};
    for (const char* const name : biasDataSets) {
        const Published published(name);
        for (int method = 0; method < 9; ++method) {
            if (method == TAU2_HS)
                continue; // figures from another fit
            SCOPED_TRACE(std::string(name) + " " + methods[method]);
            MAModelSettings settings = published.settings;
            settings.SetModelType(method < 7 ? MODEL_RANDOM : MODEL_FIXED);
            settings.SetEstTauType(static_cast<TAU2ESTIMATOR>(method));
            settings.SetMultiDiser(method == 8);
            settings.SetRegBaseTestType(REG_TEST_EFFECT_ON_SIZE); // a run has the same test whatever this is
            const nlohmann::json& figures =
                published.figures.at("bias").at(std::string("egger_") + methods[method]);
            const double tolerance = method >= 4 && method < 7 ? iterativeTolerance : closedFormTolerance;
            const BinTest run(settings, published.data.rows);
            EXPECT_TRUE(run.status.IsOK());
            const double df = static_cast<double>(published.data.rows.size()) - 2;
            ExpectTest(run.model, figures.at("slope"), figures.at("se"), df, tolerance);
            EXPECT_NEAR(run.model.GeRegBasedTestSig(), figures.at("p"), tolerance);
            EXPECT_EQ(run.model.GetRegTesType(), REG_TEST_EFFECT_ON_SIZE);
        }
    }
}

/// Classic regressions, whose limit is reported by the same program as their slope. The trials of BCG are
/// those of log risk ratios.
TEST(SmallStudyTests, LimitIsTheInterceptOfTheTestsOwnFit)
{
    for (const std::string name :
         {"bcg_vaccine", "passive_smoking", "teacher_expectancy", "writing_to_learn"}) {
        SCOPED_TRACE(name);
        Published published(name);
        published.settings.SetModelType(MODEL_FIXED);
        published.settings.SetMultiDiser(true);
        const bool isBcg = name == "bcg_vaccine";
        const nlohmann::json limit =
            LoadReference(name + (isBcg ? "_log_risk_ratio_more" : "_more")).at("egger_limit");
        const BinTest run(published.settings, published.data.rows);
        EXPECT_TRUE(Close({run.model.GetRegBasedTestLimit(), run.model.GetRegBasedTestLimitCILower(),
                           run.model.GetRegBasedTestLimitCIUpper()},
                          {limit.at("estimate"), limit.at("ci_lower"), limit.at("ci_upper")}, 1e-11));
        EXPECT_FALSE(run.Warns(MAStatusCode::FEW_STUDIES_FOR_TEST));
        published.settings.SetIsUseIntercept(false);
        EXPECT_EQ(BinTest(published.settings, published.data.rows).model.GetRegBasedTestLimit(), missing);
    }
    BinTest few(TableSettings(), studies);
    Tested(few, REG_TEST_EFFECT_ON_STD_ERROR);
    EXPECT_TRUE(few.Warns(MAStatusCode::FEW_STUDIES_FOR_TEST));
    EXPECT_EQ(few.model.GetRegBasedTestExpLimit(), std::exp(few.model.GetRegBasedTestLimit()));
    Tested(few, REG_TEST_SCORE_VARIANCE);
    EXPECT_EQ(few.model.GetRegBasedTestLimit(), missing);
}

/// Tests 1 to 3 against their definition, whatever unusable tables stand before the studies. Solving the
/// normal equations magnifies the rounding of their sums by the share of the covariate's square that the
/// intercept takes away.
TEST(SmallStudyTests, ScoresAndSizesByWeightedLeastSquares)
{
    const Rows unusable = {{4, missing, 6, 8}, {4, 9, 6, notANumber}, {0, 0, 0, 0},    {-4, 90, 60, 80},
                           {40, -9, 60, 80},   {40, 90, -6, 80},      {40, 90, 60, -8}};
    int compared = 0;
    for (const char* const name : {"bcg_vaccine", "magnesium", "beta_blockers"}) {
        const DataSet data(name);
        const int first = data.IndexOf("treatment_events");
        Rows tables;
        for (const Row& row : data.rows)
            tables.emplace_back(row.begin() + first, row.begin() + first + 4);
        const auto count = static_cast<double>(tables.size());
        for (int adjustment = ZERO_ADJUST_EACH; adjustment <= ZERO_ADJUST_NONE; ++adjustment) {
            Rows rows = unusable;
            if (adjustment == ZERO_ADJUST_NONE)
                rows.push_back({0, 9, 6, 0});
            rows.insert(rows.end(), tables.begin(), tables.end());
            MAModelSettings settings = TableSettings();
            settings.SetModelType(MODEL_FIXED);
            settings.SetBinZeroAdjType(static_cast<ZEROADJTYPE>(adjustment));
            BinTest run(settings, rows);
            if (run.model.GetEffectSize().size() != tables.size())
                continue; // a zero cell that is not corrected leaves a study without effect
            for (int test = 1; test <= 3; ++test) {
                SCOPED_TRACE(testing::Message() << name << ", adjusted " << adjustment << ", test " << test);
                const LeastSquares expected =
                    Regress(Adjusted(tables, adjustment), run.model.GetEffectSize(), test);
                const long double inflation = expected.SquaredNorm(1) * expected.InverseDiagonal(1);
                EXPECT_TRUE(Tested(run, test).IsOK());
                ExpectTest(run.model, static_cast<double>(expected.Coefficients()[1]),
                           static_cast<double>(std::sqrt(expected.InverseDiagonal(1))), count - 2,
                           count * machineEpsilon * static_cast<double>(inflation));
                ++compared;
            }
        }
    }
    EXPECT_EQ(compared, 3 * (4 + 3 + 3));
}

/// A run has a test when there are variables and trim-and-fill is on. Called by itself, before any run, the
/// test reads the studies; a type beyond the undefined one leaves the test that there is.
TEST(SmallStudyTests, NeedVariablesAndTrimAndFill)
{
    BinTest run(TableSettings(), studies);
    const Row tested = TestOf(run.model);
    EXPECT_FALSE(HasNoTest(run.model));
    EXPECT_EQ(Tested(run, 4), KXStatus(MAStatusCode::TEST_TYPE_UNDEFINED));
    EXPECT_TRUE(Tested(run, 5).IsOK());
    EXPECT_EQ(TestOf(run.model), tested);
    EXPECT_TRUE(HasNoTest(BinRun(run.settings, studies).model)) << "without variables";
    MABinModel direct(run.settings);
    EXPECT_TRUE(direct.RegBasedBinTest(run.records, run.variables, REG_TEST_EFFECT_ON_STD_ERROR).IsOK());
    EXPECT_EQ(TestOf(direct), tested);
    run.settings.SetIsTRIMFILL(false);
    EXPECT_TRUE(direct.RUN(run.records, run.variables).IsOK());
    EXPECT_TRUE(HasNoTest(direct));
}

/// The estimate of tau² after one iteration is another than that of its end.
TEST(SmallStudyTests, KeepToTheIterationsOfTheSettings)
{
    MAModelSettings settings = TableSettings();
    settings.SetModelType(MODEL_RANDOM);
    const BinTest whole(settings, studies);
    settings.SetMaxIter(1);
    EXPECT_NE(BinTest(settings, studies).model.GetRegBasedTestCoef(), whole.model.GetRegBasedTestCoef());
}

/// The run goes on without a test, and the studies are not read again.
TEST(SmallStudyTests, NeedThreeStudies)
{
    const KXStatus tooFew(MAStatusCode::TOO_FEW_FOR_TEST);
    BinTest two(TableSettings(), {studies[0], studies[1]});
    EXPECT_TRUE(two.status.IsOK());
    EXPECT_TRUE(HasNoTest(two.model));
    EXPECT_EQ(Tested(two, 1), tooFew);
    EXPECT_EQ(two.model.RegBasedTest(two.records, two.variables, MARegSettings()), tooFew);
    EXPECT_EQ(two.model.GetEffectSize().size(), 2U);
}

/// Trim-and-fill takes its side from the test: records that fail must not decide it.
TEST(SmallStudyTests, RecordsThatFailEndTheRun)
{
    using Faults = FaultyRecordIter;
    MAModelSettings settings = TableSettings();
    settings.SetIsTRIMFILL(true);
    settings.SetSubGroupIndex(4);
    for (int fault = 0; fault <= Faults::NO_FAULT; ++fault) {
        SCOPED_TRACE(testing::Message() << "fault " << fault);
        const KXStatus expected = Faults::StatusAfter(fault);
        settings.SetModelType(fault % 2 == 0 ? MODEL_FIXED : MODEL_RANDOM);
        // Two passes read the studies; the regression starts once to look and once to read.
        Faults records(studies, static_cast<Faults::Fault>(fault), 4);
        MABinModel analysis(settings);
        EXPECT_EQ(analysis.RUN(records, VariablesOf(studies)), expected);
        EXPECT_EQ(HasNoTest(analysis), expected.IsError());
        EXPECT_EQ(analysis.GetTFImputedEffectSize().empty(), expected.IsError());
        EXPECT_FALSE(analysis.GetEstEffectSize().empty());

        if (fault == Faults::RUNS_OUT_OF_MEMORY)
            continue; // a group's test without memory is like one that fails
        Faults ofGroup(studies, static_cast<Faults::Fault>(fault), 2);
        EXPECT_EQ(analysis.RegBasedTest(ofGroup, VariablesOf(studies), MARegSettings()), expected);
    }
}

/// Each group's test is that of an analysis of its records alone, whatever the test reads; then comes that of
/// all. Group 3 has one study.
TEST(SmallStudyTests, OfGroupsAreThoseOfTheirRecordsAlone)
{
    MARegSettings regression;
    regression.SetInterceptUse(true);
    regression.SetEstTauType("REML");
    regression.SetTreatmentSuccess(0);
    regression.SetTreatmentFailure(1);
    regression.SetControlSuccess(2);
    regression.SetControlFailure(3);
    for (int i = 0; i < 2 * 4; ++i) {
        const int type = i / 2;
        MAModelSettings plain = TableSettings();
        plain.SetModelType(i % 2 == 0 ? MODEL_FIXED : MODEL_RANDOM);
        plain.SetRegBaseTestType(static_cast<RegBaseTestType>(type));
        MAModelSettings settings = plain;
        settings.SetSubGroupIndex(4);
        BinTest run(settings, studies);
        const Row ofRun = TestOf(run.model);
        EXPECT_TRUE(run.model.RegBasedTest(run.records, run.variables, regression).IsOK());
        EXPECT_EQ(TestOf(run.model), ofRun);
        EXPECT_EQ(run.model.GetIfRegrTestPassFlag(), (std::vector<int>{1, 1, 0, 1}));
        EXPECT_TRUE(run.model.GetRegrTestCoefficient().at(2).empty());
        for (const std::size_t g : {0U, 1U, 3U}) {
            SCOPED_TRACE(testing::Message() << "model " << i % 2 << ", type " << type << ", group " << g);
            Rows own = studies;
            std::erase_if(own,
                          [g](const Row& row) { return g != 3 && row[4] != static_cast<double>(g + 1); });
            BinTest alone(plain, own);
            EXPECT_TRUE(alone.model.RegBasedTest(alone.records, alone.variables, regression).IsOK());
            EXPECT_EQ(FirstDifference(TestsOf(run.model, g), TestsOf(alone.model, 0)), "");
            EXPECT_EQ(run.model.GetRegrCoefParameters().at(g).size(), 2U);
            EXPECT_EQ(run.model.GetRegrCoefRedundancyInfo().at(g).Count(), 2U);
        }
        EXPECT_TRUE(Tested(run, type).IsOK());
        Row ofAll;
        for (const Result& result : TestsOf(run.model, 3))
            ofAll.push_back(result.rows[0].at(1));
        EXPECT_EQ(ofAll, TestOf(run.model));
    }
    MAModelSettings undefined = TableSettings();
    undefined.SetRegBaseTestType(static_cast<RegBaseTestType>(4));
    BinTest run(undefined, studies);
    EXPECT_EQ(run.model.RegBasedTest(run.records, run.variables, regression),
              KXStatus(MAStatusCode::TEST_TYPE_UNDEFINED));
    EXPECT_EQ(run.model.GetIfRegrTestPassFlag(), std::vector<int>{0});
}
