// What the two engines have in common: parameters, redundancy, saturated models, scores, calling order.

#include "support/DisplayOf.h"
#include "support/Regression.h"

#include "meta_analysis/platform/common/KXDistFun.h"

#include <functional>
#include <memory>

using namespace MA_NAMESPACE;

namespace {

using Column = std::function<double(const Row& row, std::size_t position)>;

/// Fourteen studies with `moderators` normal moderators, and columns computed from these.
Rows StudiesWith(std::size_t moderators, const std::vector<Column>& columns)
{
    Rows rows = RandomStudies(21, 14, moderators);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (const Column& column : columns)
            rows[i].push_back(column(rows[i], i));
    }
    return rows;
}

struct Redundancy
{
    const char* name;
    MARegSettings settings;
    Rows rows;
    std::vector<int> estimated;
};

/// A redundant parameter has nothing, and takes no degree of freedom.
void ExpectRedundancy(const Redundancy& expected, KXStatus status, const MARegOutputStats& output)
{
    ASSERT_TRUE(status.IsOK());
    ASSERT_EQ(output.GetParameters().size(), expected.estimated.size());
    for (const std::vector<double>& list :
         {output.GetEstimation(), output.GetBetaStandErr(), output.GetBetaTest(), output.GetBetaTestPValue(),
          output.GetBetaConfInterValLower(), output.GetBetaConfInterValUpper()}) {
        ASSERT_EQ(list.size(), expected.estimated.size());
        for (std::size_t j = 0; j < list.size(); ++j)
            EXPECT_EQ(KXMV::IsMissing(list[j]), expected.estimated[j] == 0) << j;
    }
    int p = 0;
    for (std::size_t j = 0; j < expected.estimated.size(); ++j) {
        EXPECT_EQ(output.GetRedundancyInfo().Test(j), expected.estimated[j] == 1) << j;
        p += expected.estimated[j];
    }
    EXPECT_EQ(output.GetResHomoDf(), 14 - p);
    EXPECT_EQ(output.GetWaldDf(), expected.settings.GetInterceptUse() ? p - 1 : p);
    EXPECT_EQ(KXMV::IsMissing(output.GetWaldChiSquareTest()), output.GetWaldDf() == 0);
    EXPECT_EQ(KXMV::IsMissing(output.GetWaldPValue()), output.GetWaldDf() == 0);
}

} // namespace

TEST(MARegAlgorithm, FindsRedundantColumns)
{
    const Column combination = [](const Row& row, std::size_t) { return 3 * row[2] - row[3] / 7 + 0.1; };
    const Column copy = [](const Row& row, std::size_t) { return row[2]; };
    const Column constant = [](const Row&, std::size_t) { return 0.7; };
    const Column zero = [](const Row&, std::size_t) { return 0.0; };
    const Column three = [](const Row&, std::size_t i) { return static_cast<double>(i % 3); };
    const Column two = [](const Row&, std::size_t i) {
        return i % 3 == 2 ? 0.0 : static_cast<double>(i % 2);
    };
    const Column far = [](const Row&, std::size_t i) { return i % 2 == 0 ? 8.0 : 3.0; };
    const Column year = [](const Row&, std::size_t i) { return 1948.0 + static_cast<double>(7 * i % 33); };
    const Column square = [](const Row& row, std::size_t) { return row[2] * row[2]; };
    const Column decades = [](const Row& row, std::size_t) { return 200 - 0.1 * row[2]; };
    const Column recent = [](const Row& row, std::size_t) { return row[2] - 1964.5; };
    const Column huge = [](const Row& row, std::size_t) { return 1e120 * row[2]; };
    const Column tiny = [](const Row& row, std::size_t) { return 1e-120 * row[3]; };
    MARegSettings crossed = RegressionOn({}, {2, 3});
    crossed.AddModelEffect(EffectOf({2, 3}, {})); // the cell (2, 1) is empty
    MARegSettings withoutIntercept = RegressionOn({2});
    withoutIntercept.SetInterceptUse(false);
    const Redundancy cases[] = {
        {"intercept alone", RegressionOn({}), StudiesWith(0, {}), {1}},
        {"combination", RegressionOn({2, 3, 4}), StudiesWith(2, {combination}), {1, 1, 1, 0}},
        {"combination first", RegressionOn({4, 3, 2}), StudiesWith(2, {combination}), {1, 1, 1, 0}},
        {"copy", RegressionOn({2, 3}), StudiesWith(1, {copy}), {1, 1, 0}},
        {"square of years", RegressionOn({2, 3}), StudiesWith(0, {year, square}), {1, 1, 1}},
        {"age in decades", RegressionOn({2, 3}), StudiesWith(0, {year, decades}), {1, 1, 0}},
        {"recent origin", RegressionOn({2, 3}), StudiesWith(0, {year, recent}), {1, 1, 0}},
        {"extreme scales", RegressionOn({4, 5}), StudiesWith(2, {huge, tiny}), {1, 1, 1}},
        {"beside the intercept", RegressionOn({3, 2}), StudiesWith(1, {constant}), {1, 0, 1}},
        {"constant", withoutIntercept, StudiesWith(0, {constant}), {1}},
        {"all", withoutIntercept, StudiesWith(0, {zero}), {0}},
        {"last levels", RegressionOn({}, {2, 3}), StudiesWith(0, {three, two}), {1, 1, 1, 0, 1, 0}},
        {"empty cell", crossed, StudiesWith(0, {three, two}), {1, 1, 1, 0, 1, 0, 1, 0, 0, 0, 0}},
        {"unused levels", RegressionOn({}, {2}, 9), StudiesWith(0, {far}), {1, 1, 0}},
    };
    for (const Redundancy& c : cases) {
        SCOPED_TRACE(c.name);
        const FERegression fixed(c.settings, c.rows);
        ExpectRedundancy(c, fixed.status, *fixed.output);
        const RERegression random(c.settings, c.rows);
        ExpectRedundancy(c, random.status, *random.output);
    }
}

/// As many studies as parameters, or fewer: the fit is exact, and without residual degrees of freedom.
TEST(MARegAlgorithm, SaturatedFixedEffects)
{
    for (const std::size_t count : {3U, 2U}) {
        const Rows rows = RandomStudies(31, count, 2);
        MARegSettings settings = RegressionOn({2, 3});
        settings.SetMultiDiser(true);
        const FERegression regression(settings, rows);
        const MARegOutputStats& output = *regression.output;
        EXPECT_TRUE(regression.status.IsOK());
        EXPECT_EQ(regression.WarningCodes(), (std::vector<int>{460047, 460049}));
        EXPECT_EQ(output.GetRedundancyInfo().Count(), count);
        EXPECT_EQ(output.GetMultiDisper(), 1.0);
        EXPECT_NEAR(output.GetResHomoChiSqure(), 0.0, 1e-24);
        EXPECT_TRUE(Same(output.GetResHomoPValue(), missing));
        EXPECT_EQ(output.GetHresSquare(), 1.0);
        EXPECT_EQ(output.GetIresSquare(), 0.0);
        EXPECT_TRUE(Same(output.GetBetaTestPValue()[0], missing));
        EXPECT_EQ(output.GetBetaConfInterValLower()[0], output.GetEstimation()[0]);
        EXPECT_EQ(output.GetBetaConfInterValUpper()[0], output.GetEstimation()[0]);
        for (const Row& row : rows) {
            const Scores scores(regression.engine, row);
            EXPECT_NEAR(scores.leverage, 1.0, 1e-12);
            EXPECT_NEAR(scores.residualStdError, 0.0, 1e-6) << "the root of rounding error, never a NaN";
            EXPECT_EQ(scores.lower, scores.fit);
        }
        settings.SetTestDistType(MAConst::TEST_STANDARD_NORMAL);
        const FERegression normal(settings, rows);
        EXPECT_FALSE(KXMV::IsMissing(normal.output->GetBetaTestPValue()[0]));
        EXPECT_LT(normal.output->GetBetaConfInterValLower()[0], normal.output->GetEstimation()[0]);
    }
}

/// Knapp and Hartung's scale is missing: there are fitted values without standard errors, unless it is
/// truncated, which makes it 1.
TEST(MARegAlgorithm, SaturatedRandomEffects)
{
    const Rows rows = RandomStudies(31, 3, 2);
    for (const std::string code : {"HE", "HS", "DL", "SJ", "ML", "REML", "EB"}) {
        for (const bool isTruncated : {false, true}) {
            SCOPED_TRACE(code);
            MARegSettings settings = RegressionOn({2, 3});
            settings.SetEstTauType(code.c_str());
            settings.SetKnapHartAdjust(true);
            settings.SetTruncAjustValue(isTruncated);
            const RERegression regression(settings, rows);
            const bool isDefined = code == "HS" || code == "DL";
            ASSERT_EQ(regression.status, isDefined ? KXStatus() : KXStatus(460015));
            if (!isDefined)
                continue;
            EXPECT_EQ(KXMV::IsMissing(regression.output->GetBetaStandErr()[1]), !isTruncated);
            EXPECT_EQ(KXMV::IsMissing(regression.output->GetFTestVal()), !isTruncated);
            EXPECT_TRUE(Same(regression.output->GetFPValue(), missing));
            const Scores scores(regression.engine, rows[0]);
            EXPECT_NEAR(scores.fit, rows[0][0], 1e-12);
            EXPECT_NEAR(scores.leverage, 1.0, 1e-12);
            EXPECT_EQ(KXMV::IsMissing(scores.upper), !isTruncated);
            EXPECT_EQ(KXMV::IsMissing(scores.residualStdError), !isTruncated);
        }
    }
}

/// The denominator of the estimator is 0 there, but for rounding.
TEST(MARegAlgorithm, SaturatedDerSimonianLaird)
{
    MARegSettings settings = RegressionOn({2, 3, 4});
    settings.SetEstTauType("DL");
    for (unsigned seed = 1; seed <= 20; ++seed)
        EXPECT_EQ(RERegression(settings, RandomStudies(seed, 4, 3)).output->GetTau(), 0.0) << seed;
}

/// Equal effects leave the scale at 0: there are coefficients and limits, but no test.
TEST(MARegAlgorithm, ExactFit)
{
    Rows rows = RandomStudies(41, 6, 1);
    for (Row& row : rows)
        row[0] = 0.0;
    MARegSettings settings = RegressionOn({2});
    settings.SetKnapHartAdjust(true);
    const RERegression adjusted(settings, rows);
    EXPECT_TRUE(Same(adjusted.output->GetBetaStandErr(), {0.0, 0.0}));
    EXPECT_TRUE(Same(adjusted.output->GetBetaConfInterValUpper(), {0.0, 0.0}));
    EXPECT_TRUE(Same(adjusted.output->GetBetaTest(), {missing, missing}));
    EXPECT_TRUE(Same(adjusted.output->GetBetaTestPValue(), {missing, missing}));
    EXPECT_TRUE(Same(adjusted.output->GetFTestVal(), missing));
    EXPECT_TRUE(Same(adjusted.output->GetFPValue(), missing));

    settings.SetMultiDiser(true);
    const FERegression dispersed(settings, rows);
    EXPECT_EQ(dispersed.WarningCodes(), std::vector<int>{460048});
    EXPECT_EQ(dispersed.output->GetMultiDisper(), 1.0);
    EXPECT_EQ(dispersed.output->GetHresSquare(), 1.0);
}

/// Where the covariate is 0 the intercept is predicted. Without dependent or weight there is a prediction
/// alone, and for a record far outside the studies no standard error of the residual.
TEST(MARegAlgorithm, Scores)
{
    const Rows rows = RandomStudies(51, 9, 1);
    struct Case
    {
        bool isRandom, knappHartung;
        MAConst::TESTDISTTYPE type;
        bool usesStudentT;
    };
    const Case cases[] = {{false, false, MAConst::TEST_STUDENT_T, true},
                          {false, true, MAConst::TEST_STANDARD_NORMAL, false},
                          {true, false, MAConst::TEST_STANDARD_NORMAL, false},
                          {true, true, MAConst::TEST_STANDARD_NORMAL, true},
                          {true, false, MAConst::TEST_STUDENT_T, true}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.isRandom << c.knappHartung << c.type);
        MARegSettings settings = RegressionOn({2});
        settings.SetConfidenceLevel(0.9);
        settings.SetOMWVarType(MAConst::OMEGA_STD_ERROR); // whose square hides a wrong sign
        settings.SetTestDistType(c.type);
        settings.SetKnapHartAdjust(c.knappHartung);
        const FERegression fixed(settings, rows);
        const RERegression random(settings, rows);
        const auto score = [&](const Row& row) {
            return c.isRandom ? ::Scores(random.engine, row) : ::Scores(fixed.engine, row);
        };
        const double critical =
            c.usesStudentT ? KXDistFun::IdfT(0.95, 7, 1e-20, 1e-12) : KXDistFun::IdfNorm(0.95, 0.0, 1.0);
        const MARegOutputStats& output = c.isRandom ? *random.output : *fixed.output;
        const double fit = output.GetEstimation()[0];
        const double half = critical * output.GetBetaStandErr()[0];
        for (const Row& row : {Row{missing, missing, 0.0}, Row{0.3, -1.0, 0.0}, Row{infinity, 0.1, 0.0}}) {
            const Row expected = {
                fit, output.GetBetaStandErr()[0], fit - half, fit + half, missing, missing, missing};
            EXPECT_TRUE(Same(score(row).Values(), expected));
        }
        const ::Scores far = score({0.3, 1e-4, 50.0});
        EXPECT_GT(far.leverage, 1.0);
        EXPECT_TRUE(Same(far.residualStdError, missing));
        EXPECT_DOUBLE_EQ(far.residual, 0.3 - far.fit);
    }
}

TEST(MARegAlgorithm, ParametersFollowTheEffects)
{
    MARegSettings settings = RegressionOn({3}, {2});
    settings.AddModelEffect(EffectOf({2}, {3}));
    Rows rows = RandomStudies(61, 9, 2);
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i][2] = i % 2 == 0 ? 2.0 : 0.0;
    rows.push_back({missing});
    VectorRecordIter records(rows);
    MAREAlgorithm engine(settings);
    EXPECT_FALSE(engine.AreParamsCreated());
    EXPECT_TRUE(engine.GetFactorCounts().GetFactors().empty());
    EXPECT_TRUE(engine.CreateParameters(records).IsOK());
    EXPECT_TRUE(engine.AreParamsCreated());
    EXPECT_EQ(engine.GetWarnings(), std::vector<KXStatus>(1, KXStatus(460031, true)));
    EXPECT_EQ(engine.GetFactorCounts().GetCount(0, 2), 5.0);
    const std::vector<KXRegrParameter> parameters = engine.GetParameters();
    const std::vector<std::vector<int>> categories = {{}, {}, {0}, {2}, {0}, {2}};
    const std::vector<int> effects = {-1, 0, 1, 1, 2, 2};
    ASSERT_EQ(parameters.size(), categories.size());
    for (std::size_t j = 0; j < parameters.size(); ++j) {
        EXPECT_EQ(parameters[j].GetCategories(), categories[j]) << j;
        EXPECT_EQ(parameters[j].GetEffectNumber(), effects[j]) << j;
    }
    EXPECT_EQ(DisplayOf(engine),
              "MAAlgorithm display start; Effect info:; "
              "Effect number; index 0; start 1; number of values 1; Combinations:; "
              "Effect number; index 1; start 2; number of values 2; Combinations:;  0;  2; "
              "Effect number; index 2; start 4; number of values 2; Combinations:;  0;  2; "
              "MAAlgorithm display end; ");
}

/// Of another build nothing is left: not its records, its warnings nor, when one fails, its results.
TEST(MARegAlgorithm, EveryBuildBeginsAfresh)
{
    const MARegSettings settings = RegressionOn({2});
    Rows rows = RandomStudies(72, 20, 1);
    MAREAlgorithm engine(settings);
    VectorRecordIter few(Rows{rows[0], rows[1], rows[2], rows[3], {missing, 1, 1}});
    EXPECT_TRUE(engine.BuildModel(few).IsOK());
    EXPECT_EQ(engine.GetWarnings().size(), 1U);
    EXPECT_EQ(engine.GetNBadRecords(), 1);
    VectorRecordIter all(rows);
    EXPECT_TRUE(engine.BuildModel(all).IsOK());
    EXPECT_TRUE(engine.GetWarnings().empty());
    EXPECT_EQ(engine.GetNBadRecords(), 0);
    VectorRecordIter none(Rows{{missing, 1, 1}});
    EXPECT_TRUE(engine.BuildModel(none).IsError());
    const MARegOutputStats output(settings, engine);
    EXPECT_TRUE(output.GetEstimation().empty());
    EXPECT_EQ(output.GetTau(), 0.0);
}

/// Creating a model's parameters anew takes it down; the results outlive the engine.
TEST(MARegAlgorithm, Lifecycle)
{
    const Rows rows = RandomStudies(71, 12, 1);
    const MARegSettings settings = RegressionOn({2});
    VectorRecordIter records(rows);
    auto engine = std::make_unique<MAREAlgorithm>(settings);
    EXPECT_EQ(Scores(*engine, rows[0]).status, KXStatus(460031, true));
    EXPECT_TRUE(engine->BuildModel(records).IsOK());
    const MARegOutputStats output(settings, *engine);
    EXPECT_TRUE(engine->CreateParameters(records).IsOK());
    EXPECT_FALSE(engine->IsModelBuilt());
    EXPECT_TRUE(Same(Scores(*engine, rows[0]).Values(), std::vector<double>(7, missing)));
    engine.reset();
    EXPECT_EQ(output.GetEstimation().size(), 2U);
    EXPECT_EQ(output.GetParameters().size(), 2U);
}

namespace {

template <class Engine>
void ExpectParts(void (Engine::*use)(bool), std::size_t testCount)
{
    const MARegSettings settings = RegressionOn({2});
    VectorRecordIter records(RandomStudies(81, 12, 1));
    Engine engine(settings);
    (engine.*use)(true);
    EXPECT_TRUE(engine.BuildModel(records).IsOK());
    EXPECT_TRUE(engine.IsModelBuilt());
    const MARegOutputStats output(settings, engine);
    EXPECT_EQ(output.GetEstimation().size(), 2U);
    EXPECT_EQ(output.GetBetaStandErr().size(), testCount);
    EXPECT_TRUE(Same(output.GetResHomoChiSqure(), missing));
}

} // namespace

/// The small-study test wants coefficients with their tests, the bubble plot coefficients alone.
TEST(MARegAlgorithm, LeavesOutWhatTheCallerDoesNotWant)
{
    ExpectParts<MAFEAlgorithm>(&MAFEAlgorithm::setUsedByRegBaseTest, 2);
    ExpectParts<MAREAlgorithm>(&MAREAlgorithm::setUsedByRegBaseTest, 2);
    ExpectParts<MAFEAlgorithm>(&MAFEAlgorithm::setUsedByBubbPlot, 0);
    ExpectParts<MAREAlgorithm>(&MAREAlgorithm::setUsedByBubbPlot, 0);
}

/// The Knapp-Hartung flag gives a fixed-effect model t tests and nothing else.
TEST(MARegAlgorithm, FixedEffectsHaveNoRandomOnes)
{
    MARegSettings settings = RegressionOn({2});
    settings.SetKnapHartAdjust(true);
    settings.SetTestDistType(MAConst::TEST_STANDARD_NORMAL);
    const FERegression regression(settings, RandomStudies(91, 12, 1));
    const MARegOutputStats& output = *regression.output;
    for (const double value :
         {output.GetTau(), output.GetRSquare(), output.GetFTestVal(), output.GetFPValue()})
        EXPECT_EQ(value, 0.0);
    EXPECT_EQ(output.GetFDf1(), 0);
    EXPECT_EQ(output.GetFDf2(), 0);
    EXPECT_EQ(output.GetMultiDisper(), 1.0);
    const double statistic = output.GetBetaTest()[1];
    EXPECT_TRUE(Close(output.GetWaldChiSquareTest(), statistic * statistic, 1e-14));
    EXPECT_NEAR(output.GetBetaTestPValue()[1], 2 * (1 - KXDistFun::CdfT(std::abs(statistic), 10)), 1e-15);
}
