// Hypotheses, effect tests, variance inflation, predictions and plots of meta-regressions.

#include "support/Published.h"
#include "support/Regression.h"

#include "meta_analysis/settings/MAStatusCode.h"

#include <utility>

using namespace MA_NAMESPACE;
using nlohmann::json;

namespace {

/// Of quantities that two ways of computing share: a few roundings of well-conditioned fits.
constexpr double rounding = 1e-11;

/// With allocation, from 0 to 2.
Rows VaccineTrials()
{
    return CentredTrials({"allocation"});
}

MARegSettings VaccineSettings(bool isAdjusted, const std::vector<int>& factors = {})
{
    MARegSettings settings = RegressionOn({2, 3}, factors);
    settings.SetEstTauType("REML");
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    settings.SetTestDistType(isAdjusted ? MAConst::TEST_STUDENT_T : MAConst::TEST_STANDARD_NORMAL);
    settings.SetKnapHartAdjust(isAdjusted);
    return settings;
}

} // namespace

/// The figures' iteration stops below a step of 1e-12 of tau².
TEST(RegressionInference, MeetsThePublishedHypotheses)
{
    const json figures = LoadReference("bcg_vaccine_regression_more");
    const json& normal = figures.at("hypotheses");
    const json& adjusted = figures.at("hypotheses_knapp_hartung");
    constexpr double tolerance = 1e-9;
    for (const bool isAdjusted : {false, true}) {
        MARegSettings settings = VaccineSettings(isAdjusted);
        settings.SetHypotheses(normal.at("L"));
        const RERegression regression(settings, VaccineTrials());
        const MARegOutputStats& output = *regression.output;
        const Row tests = isAdjusted ? adjusted.at("t") : normal.at("z");
        EXPECT_TRUE(Close(output.GetHypothesisEstimate(), normal.at("estimate"), tolerance));
        EXPECT_TRUE(Close(output.GetHypothesisVal(), tests, tolerance));
        EXPECT_TRUE(
            Close(output.GetHypothesisSig(), (isAdjusted ? adjusted : normal).at("p"), 100 * tolerance));
        if (!isAdjusted) {
            EXPECT_TRUE(Close(output.GetHypothesisStdError(), normal.at("se"), tolerance));
        }
        const double joint = isAdjusted ? adjusted.at("F") : normal.at("QM");
        const double p = isAdjusted ? adjusted.at("F_p") : normal.at("QM_p");
        EXPECT_TRUE(Close(output.GetHypothesisJointVal(), joint, tolerance));
        EXPECT_TRUE(Close(output.GetHypothesisJointSig(), p, 100 * tolerance));
        EXPECT_EQ(output.GetHypothesisJointDf(), 2);
        EXPECT_EQ(output.GetHypothesisJointDf2(), isAdjusted ? 10 : 0);
    }
}

/// All slopes together are the model test, one alone is its coefficient's, and what follows from others adds
/// nothing, whatever the size of its weights.
TEST(RegressionInference, HypothesesContainTheOtherTests)
{
    for (const bool isAdjusted : {false, true}) {
        MARegSettings settings = VaccineSettings(isAdjusted);
        settings.SetHypotheses({{0, 1, 0}, {0, 0, 1}, {0, 1e200, 2e200}, {0, 0.1, 0.2}});
        const RERegression regression(settings, VaccineTrials());
        const MARegOutputStats& output = *regression.output;
        const double model = isAdjusted ? output.GetFTestVal() : output.GetWaldChiSquareTest();
        EXPECT_TRUE(Close(output.GetHypothesisJointVal(), model, rounding));
        EXPECT_EQ(output.GetHypothesisJointDf(), 2);
        EXPECT_TRUE(Close(output.GetHypothesisVal()[3], output.GetHypothesisVal()[2], rounding));
        for (const std::size_t slope : {0U, 1U}) {
            EXPECT_TRUE(Close(output.GetHypothesisVal()[slope], output.GetBetaTest()[slope + 1], rounding));
            const double t = output.GetBetaTest()[slope + 1];
            EXPECT_TRUE(Close(output.GetEffectTestVal()[slope], t * t, rounding))
                << "F and chi-square of one";
        }
    }
}

TEST(RegressionInference, HypothesesWithoutMeaningEndTheBuild)
{
    struct Case
    {
        Rows weights;
        Row values;
        int code;
    } const cases[] = {
        {{{0, 1}}, {}, MAStatusCode::HYPOTHESIS_UNUSABLE},
        {{{0, 1, 0, 0, 0, 0}}, {1, 2}, MAStatusCode::HYPOTHESIS_UNUSABLE},
        {{{0, 0, 0, 0, 0, 0}}, {}, MAStatusCode::HYPOTHESIS_UNUSABLE},
        {{{0, notANumber, 0, 0, 0, 0}}, {}, MAStatusCode::HYPOTHESIS_UNUSABLE},
        {{{0, 1, 0, 0, 0, 0}}, {missing}, MAStatusCode::HYPOTHESIS_UNUSABLE},
        {{{0, 0, 0, 0, 0, 1}}, {}, MAStatusCode::HYPOTHESIS_ON_REDUNDANT},
        {{{0, 3, 0, 0, 0, 0}, {0, 1, 0, 0, 0, 0}}, {0.3, 0.2}, MAStatusCode::HYPOTHESES_CONTRADICT},
        {{{0, 3, 0, 0, 0, 0}, {0, 1, 0, 0, 0, 0}}, {0.3, 0.1}, 0},
        {{{1, 0, 0, 0, 0, 0}, {1, 1e-12, 0, 0, 0, 0}}, {0, 1}, 0},
    };
    for (const Case& one : cases) {
        MARegSettings settings = VaccineSettings(false, {4});
        settings.SetHypotheses(one.weights, one.values);
        EXPECT_EQ(RERegression(settings, VaccineTrials()).status.GetCode(), one.code)
            << one.weights[0].size();
    }
}

/// The reference level is another parameterization of the same model.
TEST(RegressionInference, ReferenceLevelsChangeTheCoefficientsAlone)
{
    MARegSettings settings = VaccineSettings(false, {4});
    settings.AddModelEffect(EffectOf({4}, {3}));
    settings.SetPredictions({Record({0, 0, -3, 5, 1})});
    const RERegression last(settings, VaccineTrials());
    settings.SetReferenceLevel(4, 0);
    const RERegression first(settings, VaccineTrials());
    const MARegOutputStats& before = *last.output;
    const MARegOutputStats& after = *first.output;
    EXPECT_EQ(after.GetParameters()[5].GetCategories(), std::vector<int>{0});
    EXPECT_EQ(after.GetParameters()[8].GetCategories(), std::vector<int>{0});
    EXPECT_FALSE(after.GetRedundancyInfo().Test(5));
    EXPECT_TRUE(Close(after.GetEstimation()[4], -before.GetEstimation()[3], 1e-9)) << "2 against 0";
    EXPECT_TRUE(Close(after.GetWaldChiSquareTest(), before.GetWaldChiSquareTest(), 1e-9));
    EXPECT_TRUE(Close(after.GetPredictedEffect()[0], before.GetPredictedEffect()[0], 1e-9));
    EXPECT_TRUE(Close(after.GetEffectTestVal()[2], before.GetEffectTestVal()[2], 1e-9));
    EXPECT_EQ(after.GetEffectTestDf(), (std::vector<int>{1, 1, 2, 2}));
    EXPECT_TRUE(Close(after.GetVarianceInflation()[3], before.GetVarianceInflation()[3], 1e-9));
    EXPECT_TRUE(Close(after.GetVarianceInflation()[3], 1.83266324, 1e-8)) << "of an independent package";
    for (const auto& [factor, level] : {std::pair(4, 3), std::pair(2, 0)}) {
        settings.SetReferenceLevel(factor, level);
        EXPECT_EQ(RERegression(settings, VaccineTrials()).status.GetCode(),
                  MAStatusCode::REFERENCE_LEVEL_ABSENT);
    }
}

/// Two covariates inflate each other by 1 / (1 - r²), with the weighted correlation r.
TEST(RegressionInference, InflationOfTwoCovariatesFollowsFromTheirCorrelation)
{
    const Rows rows = VaccineTrials();
    const FERegression regression(RegressionOn({2, 3}), rows);
    long double w = 0, x = 0, z = 0, xx = 0, xz = 0, zz = 0;
    for (const Row& row : rows) {
        const long double weight = 1 / row[1];
        w += weight, x += weight * row[2], z += weight * row[3];
        xx += weight * row[2] * row[2], xz += weight * row[2] * row[3], zz += weight * row[3] * row[3];
    }
    const long double r2 = (xz - x * z / w) * (xz - x * z / w) / ((xx - x * x / w) * (zz - z * z / w));
    for (const std::size_t j : {1U, 2U})
        EXPECT_TRUE(
            Close(regression.output->GetVarianceInflation()[j], static_cast<double>(1 / (1 - r2)), rounding));
    EXPECT_EQ(regression.output->GetVarianceInflation()[0], missing);
}

/// A prediction at a study's values is the study's score; the interval of a new study adds tau².
TEST(RegressionInference, PredictionsExtendTheScores)
{
    const Rows rows = VaccineTrials();
    const RERegression regression(VaccineSettings(true, {4}), rows);
    const double tau2 = regression.output->GetTau();
    for (const Row& row : rows) {
        MAPredictedEffect at;
        EXPECT_TRUE(regression.engine.PredictEffect(Record(row), at).IsOK());
        const Scores score(regression.engine, row);
        EXPECT_TRUE(Close({at.effect, at.stdError, at.ciLower, at.ciUpper},
                          {score.fit, score.stdError, score.lower, score.upper}, rounding));
        const double ratio = (at.piUpper - at.effect) / (at.ciUpper - at.effect);
        EXPECT_TRUE(Close(ratio, std::sqrt(1 + tau2 / (at.stdError * at.stdError)), rounding));
    }
    MAPredictedEffect fixed;
    const FERegression other(RegressionOn({2}), rows);
    EXPECT_TRUE(other.engine.PredictEffect(Record(rows[0]), fixed).IsOK());
    EXPECT_EQ(fixed.piLower, missing);
    EXPECT_NE(fixed.ciLower, missing);
}

/// Latitude and twice latitude plus 1: what breaks the relation has no prediction.
TEST(RegressionInference, PredictsOnlyWhatTheDataDetermine)
{
    Rows rows = VaccineTrials();
    for (Row& row : rows)
        row[3] = 2 * row[2] + 1;
    MARegSettings settings = RegressionOn({2, 3}, {4});
    settings.SetPredictions({Record({0, 0, 10, 21, 1}), Record({0, 0, 10, 21.01, 1}),
                             Record({0, 0, missing, 21, 1}), Record({0, 0, 10, 21, 3}), Record({0, 0})});
    const RERegression regression(settings, rows);
    const Row predicted = regression.output->GetPredictedEffect();
    const RERegression alone(RegressionOn({2}, {4}), rows);
    MAPredictedEffect expected;
    alone.engine.PredictEffect(Record({0, 0, 10, 0, 1}), expected);
    EXPECT_TRUE(Close(predicted[0], expected.effect, 1e-9));
    EXPECT_EQ(Row(predicted.begin() + 1, predicted.end()), Row(4, missing));
    EXPECT_EQ(regression.WarningCodes(), std::vector<int>{MAStatusCode::PREDICTION_UNAVAILABLE});
}

/// As many studies as parameters; an exact fit with tau² at 0.
TEST(RegressionInference, DegenerateFitsLeaveTestsMissing)
{
    const Rows exact = {{1, 1, 1}, {2, 1, 2}, {3, 1, 3}};
    MARegSettings settings = RegressionOn({2});
    settings.SetHypotheses({{0, 1}});
    settings.SetPredictions({Record({0, 0, 5})});
    settings.SetKnapHartAdjust(true);
    const RERegression scaled(settings, exact);
    EXPECT_EQ(scaled.output->GetTau(), 0.0);
    EXPECT_TRUE(Close(scaled.output->GetHypothesisEstimate()[0], 1.0, rounding));
    EXPECT_TRUE(Close(scaled.output->GetPredictedEffect()[0], 5.0, rounding));
    const FERegression two(settings, {exact[0], exact[1]});
    EXPECT_TRUE(Close(two.output->GetHypothesisEstimate()[0], 1.0, rounding));
    EXPECT_EQ(two.output->GetHypothesisSig()[0], missing);
    EXPECT_EQ(two.output->GetPredictedCILower()[0], missing) << "Student's t without degrees of freedom";
}

/// The line of a bubble plot is the mean of the studies' predictions at the covariate's value, also where
/// interactions give each its own slope.
TEST(RegressionInference, BubbleLineAveragesThePredictions)
{
    const Rows rows = VaccineTrials();
    MARegSettings settings = VaccineSettings(false, {4});
    settings.AddModelEffect(EffectOf({4}, {2}));
    settings.AddModelEffect(EffectOf({}, {2, 2}));
    const RERegression regression(settings, rows);
    VectorRecordIter records(rows);
    MARegBubblePlot plot;
    ASSERT_TRUE(regression.engine.BubblePlot(records, 2, 5, plot).IsOK());
    ASSERT_EQ(plot.lineX.size(), 5U);
    EXPECT_EQ(plot.studyX, ColumnOf(rows, 2));
    for (std::size_t i = 0; i < plot.lineX.size(); ++i) {
        double sum = 0;
        for (Row row : rows) {
            row[2] = plot.lineX[i];
            sum += Scores(regression.engine, row).fit;
        }
        EXPECT_TRUE(Close(plot.lineEffects[i], sum / static_cast<double>(rows.size()), 1e-9, 1));
    }
    EXPECT_EQ(regression.engine.BubblePlot(records, 4, 5, plot).GetCode(), MAStatusCode::INPUT_NOT_GIVEN);
    std::vector<MARegForestRow> forest;
    ASSERT_TRUE(regression.engine.ForestPlot(records, forest).IsOK());
    ASSERT_EQ(forest.size(), rows.size());
    EXPECT_TRUE(Close(1 / forest[3].weight, rows[3][1] + regression.output->GetTau(), rounding));
}
