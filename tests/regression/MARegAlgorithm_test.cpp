// What the two engines have in common: parameters, redundancy, saturated models, scores, calling order.

#include "support/Regression.h"

#include "meta_analysis/platform/common/KXDistFun.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <memory>
#include <sstream>

using namespace MA_NAMESPACE;
using namespace MAStatusCode;

namespace {

// The records' moderators: two normal ones, what is computed from them and from years, and levels.
constexpr int a = 2, b = 3, combination = 4, zero = 5, year = 6, square = 7, decades = 8, vast = 9;
constexpr int constant = 10, third = 11, part = 12, far = 13;

Rows StudiesWithModerators()
{
    Rows rows = RandomStudies(21, 14, 2);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        Row& row = rows[i];
        row.resize(far + 1);
        row[combination] = 3 * row[a] - row[b] / 7 + 0.1;
        row[year] = 1948.0 + static_cast<double>(7 * i % 33);
        row[square] = row[year] * row[year];
        row[decades] = 200 - 0.1 * row[year];
        row[vast] = 1e120 * row[a];
        row[constant] = 0.7;
        row[third] = static_cast<double>(i % 3);
        row[part] = row[third] == 2.0 ? 0.0 : static_cast<double>(i % 2);
        row[far] = i % 2 == 0 ? 8.0 : 3.0;
    }
    return rows;
}

/// A redundant parameter has nothing, and takes no degree of freedom.
template <class Engine>
void ExpectEstimated(const std::vector<int>& estimated, const MARegSettings& settings)
{
    const Regression<Engine> regression(settings, StudiesWithModerators());
    const MARegOutputStats& output = *regression.output;
    ASSERT_TRUE(regression.status.IsOK());
    EXPECT_EQ(output.GetParameters().size(), estimated.size());
    for (const Row& list : {output.GetEstimation(), output.GetBetaStandErr(), output.GetBetaTestPValue(),
                            output.GetBetaConfInterValUpper()}) {
        std::vector<int> there;
        for (const double value : list)
            there.push_back(KXMV::IsMissing(value) ? 0 : 1);
        EXPECT_EQ(there, estimated);
    }
    const auto p = static_cast<int>(output.GetRedundancyInfo().Count());
    EXPECT_EQ(p, std::count(estimated.begin(), estimated.end(), 1));
    EXPECT_EQ(output.GetResHomoDf(), 14 - p);
    EXPECT_EQ(output.GetWaldDf(), settings.GetInterceptUse() ? p - 1 : p);
    EXPECT_EQ(KXMV::IsMissing(output.GetWaldPValue()), output.GetWaldDf() == 0);
}

MARegSettings WithoutIntercept(MARegSettings settings)
{
    settings.SetInterceptUse(false);
    return settings;
}

MARegSettings WithEffect(const KXModelEffect& effect, MARegSettings settings)
{
    settings.AddModelEffect(effect);
    return settings;
}

} // namespace

TEST(MARegAlgorithm, FindsRedundantColumns)
{
    struct Case
    {
        const char* name;
        MARegSettings settings;
        std::vector<int> estimated;
    };
    const Case cases[] = {
        {"intercept alone", RegressionOn({}), {1}},
        {"combination", RegressionOn({a, b, combination}), {1, 1, 1, 0}},
        {"combination first", RegressionOn({combination, b, a}), {1, 1, 1, 0}},
        {"constant", RegressionOn({constant, a}), {1, 0, 1}},
        {"square of years", RegressionOn({year, square}), {1, 1, 1}},
        {"age in decades", RegressionOn({year, decades}), {1, 1, 0}},
        {"extreme scales", RegressionOn({vast, b}), {1, 1, 1}},
        {"no intercept", WithoutIntercept(RegressionOn({a})), {1}},
        {"levels without intercept", WithoutIntercept(RegressionOn({}, {third})), {1, 1, 1}},
        {"none", WithoutIntercept(RegressionOn({zero})), {0}},
        {"last levels", RegressionOn({}, {third, part}), {1, 1, 1, 0, 1, 0}},
        {"empty cell",
         WithEffect(EffectOf({third, part}, {}), RegressionOn({}, {third, part})),
         {1, 1, 1, 0, 1, 0, 1, 0, 0, 0, 0}},
        {"unused levels", RegressionOn({}, {far}, 9), {1, 1, 0}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ExpectEstimated<MAFEAlgorithm>(c.estimated, c.settings);
        ExpectEstimated<MAREAlgorithm>(c.estimated, c.settings);
    }
}

/// As many studies as parameters, or fewer: the fit is exact, and without residual degrees of freedom.
TEST(MARegAlgorithm, SaturatedFixedEffectsAreExact)
{
    for (const std::size_t count : {3U, 2U}) {
        const Rows rows = RandomStudies(31, count, 2);
        MARegSettings settings = RegressionOn({2, 3});
        settings.SetMultiDiser(true);
        const FERegression regression(settings, rows);
        const MARegOutputStats& output = *regression.output;
        EXPECT_EQ(regression.WarningCodes(),
                  (std::vector<int>{AS_MANY_STUDIES_AS_PARAMETERS, NO_RESIDUAL_DF}));
        EXPECT_EQ(output.GetRedundancyInfo().Count(), count);
        EXPECT_EQ(output.GetMultiDisper(), 1.0);
        EXPECT_NEAR(output.GetResHomoChiSqure(), 0.0, 1e-24);
        EXPECT_EQ((Row{output.GetResHomoPValue(), output.GetHresSquare(), output.GetIresSquare()}),
                  (Row{missing, 1.0, 0.0}));
        EXPECT_EQ(output.GetBetaTestPValue()[0], missing);
        EXPECT_EQ(output.GetBetaConfInterValLower()[0], output.GetEstimation()[0]);
        const Scores scores(regression.engine, rows[0]);
        EXPECT_NEAR(scores.leverage, 1.0, 1e-12);
        EXPECT_NEAR(scores.residualStdError, 0.0, 1e-6) << "the root of rounding error, never a NaN";
        settings.SetTestDistType(MAConst::TEST_STANDARD_NORMAL);
        const FERegression normal(settings, rows);
        EXPECT_NE(normal.output->GetBetaTestPValue()[0], missing);
        EXPECT_LT(normal.output->GetBetaConfInterValLower()[0], normal.output->GetEstimation()[0]);
    }
}

/// Knapp and Hartung's scale is missing: there are fitted values without standard errors, unless it is
/// truncated, which makes it 1.
TEST(MARegAlgorithm, SaturatedRandomEffectsHaveNoScaleUnlessTruncated)
{
    const Rows rows = RandomStudies(31, 3, 2);
    for (const char* const code : {"HS", "DL"}) {
        for (const bool isTruncated : {false, true}) {
            SCOPED_TRACE(code);
            MARegSettings settings = RegressionOn({2, 3});
            settings.SetEstTauType(code);
            settings.SetKnapHartAdjust(true);
            settings.SetTruncAjustValue(isTruncated);
            const RERegression regression(settings, rows);
            const Scores scores(regression.engine, rows[0]);
            EXPECT_NEAR(scores.fit, rows[0][0], 1e-12);
            EXPECT_EQ(regression.output->GetFPValue(), missing);
            for (const double value : {regression.output->GetBetaStandErr()[1], scores.upper,
                                       regression.output->GetFTestVal(), scores.residualStdError})
                EXPECT_EQ(KXMV::IsMissing(value), !isTruncated);
        }
    }
}

/// The denominator of the estimator is 0 there, but for rounding.
TEST(MARegAlgorithm, SaturatedDerSimonianLairdIsZero)
{
    MARegSettings settings = RegressionOn({2, 3, 4});
    settings.SetEstTauType("DL");
    for (unsigned seed = 1; seed <= 20; ++seed)
        EXPECT_EQ(RERegression(settings, RandomStudies(seed, 4, 3)).output->GetTau(), 0.0) << seed;
}

/// Equal effects leave the scale at 0: there are coefficients and limits, but no test.
TEST(MARegAlgorithm, ExactFitHasNoTest)
{
    Rows rows = RandomStudies(41, 6, 1);
    for (Row& row : rows)
        row[0] = 0.0;
    MARegSettings settings = RegressionOn({2});
    settings.SetKnapHartAdjust(true);
    settings.SetMultiDiser(true);
    const RERegression adjusted(settings, rows);
    EXPECT_EQ(adjusted.output->GetBetaStandErr(), (Row{0.0, 0.0}));
    EXPECT_EQ(adjusted.output->GetBetaConfInterValUpper(), (Row{0.0, 0.0}));
    EXPECT_EQ(adjusted.output->GetBetaTest(), (Row{missing, missing}));
    EXPECT_EQ(adjusted.output->GetBetaTestPValue(), (Row{missing, missing}));
    EXPECT_EQ(adjusted.output->GetFPValue(), missing);
    const FERegression dispersed(settings, rows);
    EXPECT_EQ(dispersed.WarningCodes(), std::vector<int>{DISPERSION_NEAR_ZERO});
    EXPECT_EQ(dispersed.output->GetMultiDisper(), 1.0);
    EXPECT_EQ(dispersed.output->GetHresSquare(), 1.0);
}

namespace {

/// Where the covariate is 0 the intercept is predicted. Without dependent or weight there is a prediction
/// alone, and for a record far outside the studies no standard error of the residual.
template <class Engine>
void ExpectScores(MARegSettings settings, bool usesStudentT)
{
    settings.SetConfidenceLevel(0.9);
    settings.SetOMWVarType(MAConst::OMEGA_STD_ERROR); // whose square hides a wrong sign
    const Regression<Engine> regression(settings, RandomStudies(51, 9, 1));
    const double fit = regression.output->GetEstimation()[0];
    const double stdError = regression.output->GetBetaStandErr()[0];
    const double half = stdError * (usesStudentT ? KXDistFun::IdfT(0.95, 7, 1e-20, 1e-12)
                                                 : KXDistFun::IdfNorm(0.95, 0.0, 1.0));
    for (const Row& row : {Row{missing, missing, 0.0}, Row{0.3, -1.0, 0.0}, Row{infinity, 0.1, 0.0}})
        EXPECT_TRUE(Close(Scores(regression.engine, row).Values(),
                          Row{fit, stdError, fit - half, fit + half, missing, missing, missing}, 1e-14));
    const Scores distant(regression.engine, {0.3, 1e-4, 50.0});
    EXPECT_GT(distant.leverage, 1.0);
    EXPECT_EQ(distant.residualStdError, missing);
    EXPECT_DOUBLE_EQ(distant.residual, 0.3 - distant.fit);
}

} // namespace

/// Knapp and Hartung's adjustment asks for t, but not of fixed effects.
TEST(MARegAlgorithm, ScoresAreTestedAsTheCoefficientsAre)
{
    for (const bool isAdjusted : {false, true}) {
        for (const MAConst::TESTDISTTYPE type : {MAConst::TEST_STANDARD_NORMAL, MAConst::TEST_STUDENT_T}) {
            SCOPED_TRACE(testing::Message() << isAdjusted << type);
            MARegSettings settings = RegressionOn({2});
            settings.SetKnapHartAdjust(isAdjusted);
            settings.SetTestDistType(type);
            ExpectScores<MAFEAlgorithm>(settings, type == MAConst::TEST_STUDENT_T);
            ExpectScores<MAREAlgorithm>(settings, isAdjusted || type == MAConst::TEST_STUDENT_T);
        }
    }
}

TEST(MARegAlgorithm, ParametersFollowTheEffects)
{
    const MARegSettings settings = WithEffect(EffectOf({2}, {3, 3}), RegressionOn({3}, {2}));
    Rows rows = RandomStudies(61, 9, 2);
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i][2] = i % 2 == 0 ? 2.0 : 0.0;
    rows.push_back({missing});
    VectorRecordIter records(rows);
    MAREAlgorithm engine(settings);
    EXPECT_TRUE(engine.CreateParameters(records).IsOK());
    EXPECT_EQ(CodesOf(engine.GetWarnings()), std::vector<int>{UNUSABLE_RECORD});
    EXPECT_EQ(engine.GetFactorCounts().GetCount(0, 2), 5.0);

    std::ostringstream texts; // effect: factors = categories, covariates ^ multiplicities
    for (const KXRegrParameter& parameter : engine.GetParameters())
        texts << parameter.GetEffectNumber() << ": " << testing::PrintToString(parameter.GetFactors())
              << " = " << testing::PrintToString(parameter.GetCategories()) << ", "
              << testing::PrintToString(parameter.GetCovariates()) << " ^ "
              << testing::PrintToString(parameter.GetCovMultiplicities()) << '\n';
    EXPECT_EQ(texts.str(), "-1: {} = {}, {} ^ {}\n"
                           "0: {} = {}, { 3 } ^ { 1 }\n"
                           "1: { 2 } = { 0 }, {} ^ {}\n"
                           "1: { 2 } = { 2 }, {} ^ {}\n"
                           "2: { 2 } = { 0 }, { 3 } ^ { 2 }\n"
                           "2: { 2 } = { 2 }, { 3 } ^ { 2 }\n");
}

/// Of another build nothing is left: not its records, its warnings nor, when one fails, its results. Creating
/// a model's parameters anew takes it down, but results outlive the engine.
TEST(MARegAlgorithm, EveryBuildBeginsAfresh)
{
    const MARegSettings settings = RegressionOn({2});
    const Rows rows = RandomStudies(72, 20, 1);
    VectorRecordIter all(rows);
    VectorRecordIter few(Rows{rows[0], rows[1], rows[2], rows[3], {missing, 1, 1}});
    VectorRecordIter none(Rows{{missing, 1, 1}});
    auto engine = std::make_unique<MAREAlgorithm>(settings);
    EXPECT_EQ(Scores(*engine, rows[0]).status, KXStatus(UNUSABLE_RECORD, true));
    EXPECT_TRUE(engine->BuildModel(few).IsOK());
    EXPECT_EQ(engine->GetNBadRecords(), 1);
    EXPECT_TRUE(engine->BuildModel(all).IsOK());
    EXPECT_TRUE(engine->GetWarnings().empty());
    EXPECT_EQ(engine->GetNBadRecords(), 0);
    const MARegOutputStats ofAll(settings, *engine);
    EXPECT_TRUE(engine->CreateParameters(all).IsOK());
    EXPECT_FALSE(engine->IsModelBuilt());
    EXPECT_EQ(Scores(*engine, rows[0]).Values(), Row(7, missing));
    EXPECT_TRUE(engine->BuildModel(none).IsError());
    const MARegOutputStats ofNone(settings, *engine);
    EXPECT_TRUE(ofNone.GetEstimation().empty());
    EXPECT_EQ(ofNone.GetTau(), 0.0);
    engine.reset();
    EXPECT_EQ(ofAll.GetEstimation().size(), 2U);
    EXPECT_EQ(ofAll.GetParameters().size(), 2U);
}
