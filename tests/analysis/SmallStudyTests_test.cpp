#include "support/FaultyRecordIter.h"
#include "support/LeastSquares.h"
#include "support/PooledFigures.h"
#include "support/Published.h"
#include "support/SmallStudyRun.h"

#include "meta_analysis/analysis/MARegBaseTest.h"
#include "meta_analysis/analysis/RegTestRecordIterator.h"
#include "meta_analysis/platform/common/KXDistFun.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <type_traits>

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

/// Tables, then a group.
const Rows studies = {{4, 119, 11, 128, 1},  {6, 300, 29, 274, 2}, {3, 228, 11, 209, 1},
                      {62, 138, 72, 128, 2}, {0, 50, 9, 40, 1},    {5, 40, 4, 44, 3},
                      {8, 60, 20, 50, 2},    {17, 70, 19, 66, 1},  {9, 90, 14, 85, 2}};

/// What a test makes of a table, after a constant was added to its cells.
struct TestedTable
{
    TestedTable(const Row& table, int test, double added, double effect)
    {
        const double a = table[0] + added;
        const double b = table[1] + added;
        const double c = table[2] + added;
        const double d = table[3] + added;
        const double n = a + b + c + d;
        const double score = a - (a + c) * (a + b) / n;
        const double oddsScore = score * n / (b + d); // of the control group's odds
        weight = (a + b) * (c + d) * (a + c) / (test == 1 ? n * n * (n - 1) / (b + d) : (b + d) * n);
        response = (test == 1 ? score : oddsScore) / weight;
        covariate = 1 / std::sqrt(weight);
        if (test != 3)
            return;
        response = effect;
        covariate = 1 / n;
        weight = (b + d) * (a + c) / n;
    }

    double response;
    double covariate;
    double weight;
};

/// The test by weighted least squares of the studies, whose effects are given.
LeastSquares Regress(const Rows& tables, const Row& studyEffects, int test, ZEROADJTYPE adjustment)
{
    const auto hasZero = [](const Row& t) { return t[0] * t[1] * t[2] * t[3] == 0; };
    bool anyZero = false;
    for (const Row& table : tables)
        anyZero = anyZero || hasZero(table);
    Rows records;
    LeastSquares::Vector weights;
    for (std::size_t i = 0; i < tables.size(); ++i) {
        const bool isAdjusted = adjustment == ZERO_ADJUST_ALL ||
                                (adjustment == ZERO_ADJUST_ALL_IF_ANY && anyZero) ||
                                (adjustment == ZERO_ADJUST_EACH && hasZero(tables[i]));
        const TestedTable tested(tables[i], test, isAdjusted ? 0.5 : 0.0, studyEffects[i]);
        records.push_back({tested.response, 0, tested.covariate});
        weights.push_back(tested.weight);
    }
    return LeastSquares(records, weights);
}

bool HasNoTest(const MABaseModel& model)
{
    return model.GetRegBasedTestCoef() == missing && model.GetRegBasedTestStdError() == missing &&
           model.GetRegBasedTestVal() == missing && model.GeRegBasedTestSig() == missing &&
           model.GetRegBasedTestCILower() == missing && model.GetRegBasedTestCIUpper() == missing &&
           model.GetRegBasedTestDf() == 0;
}

/// The coefficient of the test covariate, with the statistic of t and its interval.
void ExpectTest(const MABaseModel& model, double slope, double stdError, double df, double tolerance)
{
    const double halfWidth = KXDistFun::IdfT(0.975, df) * stdError;
    const double significance = 2 * KXDistFun::CdfT(-std::abs(slope / stdError), df);
    EXPECT_TRUE(Close(model.GetRegBasedTestCoef(), slope, tolerance, stdError));
    EXPECT_TRUE(Close(model.GetRegBasedTestStdError(), stdError, tolerance));
    EXPECT_TRUE(Close(model.GetRegBasedTestVal(), slope / stdError, tolerance, 1.0));
    EXPECT_NEAR(model.GeRegBasedTestSig(), significance, tolerance);
    EXPECT_TRUE(Close(model.GetRegBasedTestCILower(), slope - halfWidth, tolerance, halfWidth));
    EXPECT_TRUE(Close(model.GetRegBasedTestCIUpper(), slope + halfWidth, tolerance, halfWidth));
    EXPECT_EQ(model.GetRegBasedTestDf(), df);
}

using BinTest = SmallStudyRun<MABinModel>;
using ContTest = SmallStudyRun<MAContModel>;

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
            published.WithDriver([&](auto* driver) {
                const SmallStudyRun<std::remove_pointer_t<decltype(driver)>> run(settings,
                                                                                 published.data.rows);
                EXPECT_TRUE(run.status.IsOK());
                EXPECT_EQ(run.model.GetRegTesType(), REG_TEST_EFFECT_ON_SIZE);
                const double df = static_cast<double>(published.data.rows.size()) - 2;
                ExpectTest(run.model, figures.at("slope"), figures.at("se"), df, tolerance);
                EXPECT_NEAR(run.model.GeRegBasedTestSig(), figures.at("p"), tolerance);
            });
        }
    }
}

/// Tests 1 to 3 against their definition, whatever unusable tables stand before the studies. Solving the
/// normal equations magnifies the rounding of their sums by the share of the covariate's square that the
/// intercept takes away.
TEST(SmallStudyTests, ScoresAndSizesByWeightedLeastSquares)
{
    const Rows unusable = {{4, missing, 6, 8}, {4, 9, 6, notANumber}, {0, 0, 0, 0},    {-4, 90, 60, 80},
                           {40, -9, 60, 80},   {40, 90, -6, 80},      {40, 90, 60, -8}};
    for (const char* const name : {"bcg_vaccine", "magnesium", "beta_blockers"}) {
        const DataSet data(name);
        const int first = data.IndexOf("treatment_events");
        Rows tables;
        for (const Row& row : data.rows)
            tables.emplace_back(row.begin() + first, row.begin() + first + 4);
        for (int adjustment = ZERO_ADJUST_EACH; adjustment <= ZERO_ADJUST_NONE; ++adjustment) {
            Rows rows = unusable;
            if (adjustment == ZERO_ADJUST_NONE)
                rows.push_back({0, 9, 6, 0});
            rows.insert(rows.end(), tables.begin(), tables.end());
            for (int test = 1; test <= 3; ++test) {
                SCOPED_TRACE(testing::Message() << name << ", adjusted " << adjustment << ", test " << test);
                MAModelSettings settings = TableSettings();
                settings.SetModelType(MODEL_FIXED);
                settings.SetBinZeroAdjType(static_cast<ZEROADJTYPE>(adjustment));
                BinTest run(settings, rows);
                if (run.model.GetEffectSize().size() != tables.size())
                    continue; // a zero cell that is not corrected leaves a study without effect
                ASSERT_TRUE(
                    run.model.RegBasedBinTest(run.records, run.variables, static_cast<RegBaseTestType>(test))
                        .IsOK());
                const LeastSquares expected =
                    Regress(tables, run.model.GetEffectSize(), test, settings.GetBinZeroAdjType());
                const auto inflation =
                    static_cast<double>(expected.SquaredNorm(1) * expected.InverseDiagonal(1));
                const double tolerance = static_cast<double>(tables.size()) * machineEpsilon * inflation;
                ExpectTest(run.model, static_cast<double>(expected.Coefficients()[1]),
                           static_cast<double>(std::sqrt(expected.InverseDiagonal(1))),
                           static_cast<double>(tables.size()) - 2, tolerance);
            }
        }
    }
}

TEST(SmallStudyTests, RecordsWithoutEventsAreDroppedOnRequest)
{
    for (const bool drops : {false, true}) {
        VectorRecordIter source({{0, 9, 0, 8}, {4, 0, 6, 0}});
        RegTestRecordIterator records(source, 4, REG_TEST_EFFECT_ON_SIZE);
        records.SetCountIndices(0, 1, 2, 3);
        records.SetAdjustType(ZERO_ADJUST_EACH);
        records.SetDropBinZero(drops);
        ASSERT_TRUE(records.ResizeRecord() && records.Start());
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(records.Next() == nullptr, drops);
    }
}

/// A run has a test when there are variables and trim-and-fill is on. Called by itself, before any run, the
/// test reads the studies.
TEST(SmallStudyTests, WhenThereIsOne)
{
    const MAModelSettings settings = TableSettings();
    BinTest run(settings, studies);
    const double slope = run.model.GetRegBasedTestCoef();
    EXPECT_FALSE(HasNoTest(run.model));
    MABinModel withoutVariables(run.settings);
    EXPECT_TRUE(withoutVariables.RUN(run.records, KXVarList()).IsOK());
    EXPECT_TRUE(HasNoTest(withoutVariables));
    EXPECT_NE(withoutVariables.GetOverallTFEffectSize(), missing);
    MABinModel withoutTrimFill(settings);
    EXPECT_TRUE(withoutTrimFill.RUN(run.records, run.variables).IsOK());
    EXPECT_TRUE(HasNoTest(withoutTrimFill));

    const auto test = [&run](MABinModel& model, int type) {
        return model.RegBasedBinTest(run.records, run.variables, static_cast<RegBaseTestType>(type));
    };
    MABinModel direct(settings);
    EXPECT_TRUE(test(direct, 0).IsOK());
    EXPECT_EQ(direct.GetRegBasedTestCoef(), slope);
    EXPECT_EQ(test(run.model, 4), KXStatus(MAStatusCode::TEST_TYPE_UNDEFINED));
    EXPECT_TRUE(test(run.model, 5).IsOK());
    EXPECT_EQ(run.model.GetRegBasedTestCoef(), slope);

    ContTest effects(EffectSettings(), {{0.1, 1}, {0.4, 2}, {0.2, 3}, {0.9, 4}});
    MAContModel directEffects(effects.settings);
    EXPECT_TRUE(directEffects.RegBasedContTest(effects.records, effects.variables).IsOK());
    EXPECT_EQ(directEffects.GetRegBasedTestCoef(), effects.model.GetRegBasedTestCoef());
}

/// A test that fails leaves its values missing, and the run goes on.
TEST(SmallStudyTests, FailureDoesNotEndTheRun)
{
    BinTest two(TableSettings(), {studies[0], studies[1]});
    EXPECT_TRUE(two.status.IsOK());
    EXPECT_TRUE(HasNoTest(two.model));
    EXPECT_EQ(two.model.GetLabbePlotX().size(), 1U);
    EXPECT_EQ(two.model.RegBasedBinTest(two.records, two.variables, REG_TEST_SCORE_VARIANCE),
              KXStatus(MAStatusCode::TOO_FEW_FOR_TEST));
    EXPECT_EQ(two.model.RegBasedTest(two.records, two.variables, MARegSettings()),
              KXStatus(MAStatusCode::TOO_FEW_FOR_TEST));
    EXPECT_TRUE(two.model.GetIfRegrTestPassFlag().empty());
    EXPECT_EQ(two.model.GetEffectSize().size(), 2U); // not read again
    BinTest none(TableSettings(), {{missing, 1, 2, 3}});
    EXPECT_EQ(none.status, KXStatus(MAStatusCode::NO_ANALYSED_STUDY)); // of trim-and-fill
    EXPECT_EQ(none.model.GetNMissing(), 1);

    for (const MODELTYPE model : {MODEL_FIXED, MODEL_RANDOM}) {
        for (int fault = 0; fault <= FaultyRecordIter::NO_FAULT; ++fault) {
            SCOPED_TRACE(testing::Message() << "model " << model << ", fault " << fault);
            MAModelSettings settings = TableSettings();
            settings.SetModelType(model);
            settings.SetIsTRIMFILL(true);
            // Two passes read the studies; the regression starts once to look and once to read.
            FaultyRecordIter records(studies, static_cast<FaultyRecordIter::Fault>(fault), 4);
            MABinModel analysis(settings);
            EXPECT_TRUE(analysis.RUN(records, VariablesOf(studies)).IsOK());
            EXPECT_EQ(HasNoTest(analysis), fault != FaultyRecordIter::NO_FAULT);
            EXPECT_NE(analysis.GetOverallTFEffectSize(), missing);
            EXPECT_EQ(analysis.GetLabbePlotX().size(), 1U);
        }
    }
}

/// The engine by itself, on records of effect and variance.
TEST(SmallStudyTests, Engine)
{
    const Rows rows = {{0.1, 1}, {0.4, 2}, {0.2, 3}, {0.9, 4}};
    const KXVarList variables = VariablesOf(rows);
    VectorRecordIter records(rows);
    MARegSettings settings;
    settings.SetInterceptUse(true);
    settings.SetOMWVarIndex(1);
    MARegBaseTest test(settings, variables);
    EXPECT_EQ(test.Test(records), KXStatus(MAStatusCode::TEST_TYPE_UNDEFINED));
    test.SetTestType(REG_TEST_EFFECT_ON_STD_ERROR);
    EXPECT_EQ(test.Test(records), KXStatus(MAStatusCode::TEST_DEPENDENT_REFUSED)); // there is none
    test.SetEffectSizeIndex(2); // the column that the covariate is
    EXPECT_EQ(test.Test(records), KXStatus(MAStatusCode::TEST_COVARIATE_REFUSED));
    test.SetEffectSizeIndex(0);
    EXPECT_EQ(test.Test(records), KXStatus(MAStatusCode::TEST_WITHOUT_OUTPUT)); // no model type
    test.SetTestRegModelType(MODEL_FIXED);
    FaultyRecordIter faulty(rows, FaultyRecordIter::REFUSES_START, 1);
    EXPECT_EQ(test.Test(faulty), KXStatus(MAStatusCode::TEST_WITHOUT_OUTPUT));
    EXPECT_TRUE(test.GetCoefficient().empty());
    EXPECT_EQ(test.GetResidualDf(), 0);

    ASSERT_TRUE(test.Test(records).IsOK());
    const std::vector<double> coefficients = test.GetCoefficient();
    EXPECT_EQ(coefficients.size(), 2U);
    EXPECT_EQ(test.GetResidualDf(), 2);
    FaultyRecordIter again(rows, FaultyRecordIter::REFUSES_START, 1);
    EXPECT_EQ(test.Test(again), KXStatus(MAStatusCode::ITERATOR_NOT_STARTED));
    EXPECT_EQ(test.GetCoefficient(), coefficients); // of the test before
    EXPECT_EQ(&test.GetSettings(), &settings);
    EXPECT_EQ(settings.GetNumOfCovariates(), 0);

    // Whether a record holds the variance, the standard error or the weight makes no difference.
    for (const OMGWeightType type : {OMEGA_STD_ERROR, OMEGA_WEIGHT}) {
        Rows others = rows;
        for (Row& row : others)
            row[1] = type == OMEGA_WEIGHT ? 1 / row[1] : std::sqrt(row[1]);
        VectorRecordIter otherRecords(others);
        settings.SetOMWVarType(type);
        ASSERT_TRUE(test.Test(otherRecords).IsOK());
        EXPECT_TRUE(Close(test.GetCoefficient(), coefficients, 1e-13));
    }
}

/// Each group's test is that of an analysis of its records alone, whatever the test reads; then that of all.
/// Group 3 has one study.
TEST(SmallStudyTests, OfGroups)
{
    for (const MODELTYPE model : {MODEL_FIXED, MODEL_RANDOM}) {
        for (int type = 0; type <= 4; ++type) {
            SCOPED_TRACE(testing::Message() << "model " << model << ", type " << type);
            MAModelSettings settings = TableSettings();
            settings.SetModelType(model);
            settings.SetSubGroupIndex(4);
            settings.SetRegBaseTestType(static_cast<RegBaseTestType>(type));
            MARegSettings regression;
            regression.SetInterceptUse(true);
            regression.SetEstTauType("REML");
            regression.SetTreatmentSuccess(0);
            regression.SetTreatmentFailure(1);
            regression.SetControlSuccess(2);
            regression.SetControlFailure(3);
            BinTest run(settings, studies);
            const double slope = run.model.GetRegBasedTestCoef();
            const KXStatus status = run.model.RegBasedTest(run.records, run.variables, regression);
            EXPECT_EQ(status, KXStatus(type == 4 ? MAStatusCode::TEST_TYPE_UNDEFINED : 0));
            EXPECT_EQ(run.model.GetRegBasedTestCoef(), slope);
            EXPECT_EQ(run.model.GetIfRegrTestPassFlag(),
                      type == 4 ? std::vector<int>(4, 0) : (std::vector<int>{1, 1, 0, 1}));
            ASSERT_EQ(run.model.GetRegrTestCoefficient().size(), 4U);
            for (std::size_t g = 0; g < 4; ++g) {
                SCOPED_TRACE(testing::Message() << "group " << g);
                const bool isThere = type < 4 && g != 2;
                EXPECT_EQ(run.model.GetRegrCoefParameters().at(g).size(), isThere ? 2U : 0U);
                EXPECT_EQ(run.model.GetRegrCoefRedundancyInfo().at(g).Count(), isThere ? 2U : 0U);
                EXPECT_EQ(run.model.GetRegrTestCoefficient()[g].size(), isThere ? 2U : 0U);
                if (!isThere)
                    continue;
                Rows own;
                for (const Row& study : studies) {
                    if (g == 3 || study[4] == static_cast<double>(g) + 1)
                        own.push_back(study);
                }
                MAModelSettings plain = settings;
                plain.SetSubGroupIndex(-1);
                BinTest alone(plain, own);
                alone.model.RegBasedBinTest(alone.records, alone.variables,
                                            static_cast<RegBaseTestType>(type));
                const MABinModel& whole = run.model;
                EXPECT_EQ(whole.GetRegrTestCoefficient()[g][1], alone.model.GetRegBasedTestCoef());
                EXPECT_EQ(whole.GetRegrTestBetaStandErr()[g][1], alone.model.GetRegBasedTestStdError());
                EXPECT_EQ(whole.GetRegrBetaTestVal()[g][1], alone.model.GetRegBasedTestVal());
                EXPECT_EQ(whole.GetRegrBetaTestPValue()[g][1], alone.model.GeRegBasedTestSig());
                EXPECT_EQ(whole.GetRegrBetaConfInterValLower()[g][1], alone.model.GetRegBasedTestCILower());
                EXPECT_EQ(whole.GetRegrBetaConfInterValUpper()[g][1], alone.model.GetRegBasedTestCIUpper());
            }
        }
    }
}
