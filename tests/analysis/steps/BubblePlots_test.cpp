#include "support/Compare.h"
#include "support/FinishedRun.h"
#include "support/LeastSquares.h"
#include "support/Reference.h"

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/platform/common/KXDistFun.h"
#include "meta_analysis/platform/common/KXQueryCancel.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <numeric>

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

MARegSettings WithIntercept()
{
    MARegSettings settings;
    settings.SetInterceptUse(true);
    return settings;
}

/// Log risk ratios of the BCG trials, and their bubble plots over columns of their file.
struct Trials
{
    explicit Trials(MODELTYPE model) : settings(TableSettings(data.IndexOf("treatment_events")))
    {
        settings.SetBinaryEstType(BIN_RISK_RATIO);
        settings.SetModelType(model);
        settings.SetBubbleCurveNPoints(3);
    }

    MABinModel Plotted(MARegSettings regression,
                       const std::vector<std::string>& covariates = {"latitude"}) const
    {
        for (const std::string& covariate : covariates)
            regression.AddCovariate(data.IndexOf(covariate));
        MABinModel model(settings);
        VectorRecordIter records(data.rows);
        const KXVarList variables = VariablesOf(data.rows);
        EXPECT_FALSE(model.RUN(records, variables).IsError());
        EXPECT_FALSE(model.BubblePlot(records, variables, regression).IsError());
        return model;
    }

    DataSet data{"bcg_vaccine"};
    MAModelSettings settings;
};

/// The regression on the distance from x, whose intercept is the line at x.
LeastSquares LineAt(double x, const MABinModel& model, double tau2)
{
    Rows records;
    LeastSquares::Vector weights;
    const Row xs = model.GetBubbleXs()[0];
    for (std::size_t i = 0; i < xs.size(); ++i) {
        records.push_back({model.GetEffectSize()[i], 1.0, xs[i] - x});
        weights.push_back(1.0L / (static_cast<long double>(model.GetVariance()[i]) + tau2));
    }
    return LeastSquares(records, weights);
}

/// The reference iterates tau², here 0.08, to a step of 1e-12; the line and its band move by the same share.
constexpr double referenceTolerance = 1e-10;

/// Every study has the weight of the fit, and a place on the line.
void ExpectStudiesOnTheLine(const MABinModel& model, double tau2)
{
    const Row coefficients = model.GetBubbleCoefs()[0];
    const Row x = model.GetBubbleXs()[0];
    const Row predicted = model.GetBubblePredVals()[0];
    const Row weights = model.GetBubbleW()[0];
    const Row lower = model.GetBubbleCILower()[0];
    const Row upper = model.GetBubbleCIUpper()[0];
    ASSERT_EQ(x.size(), 13U);
    EXPECT_NEAR(std::accumulate(weights.begin(), weights.end(), 0.0), 100.0, 13 * 100 * machineEpsilon);
    const auto unscaled = [&](std::size_t i) { return weights[i] * (model.GetVariance()[i] + tau2); };
    for (std::size_t i = 0; i < x.size(); ++i) {
        const double expected = coefficients[0] + coefficients[1] * x[i];
        EXPECT_TRUE(Close(predicted[i], expected, 4 * machineEpsilon, 55 * -coefficients[1]));
        EXPECT_TRUE(Close(lower[i] + upper[i], 2 * predicted[i], 16 * machineEpsilon, upper[i]));
        EXPECT_GT(upper[i], lower[i]);
        EXPECT_TRUE(Close(unscaled(i), unscaled(0), referenceTolerance));
    }
}

} // namespace

TEST(BubblePlots, HaveTheLineOfThePublishedRegression)
{
    const nlohmann::json figures = LoadReference("bcg_vaccine")["risk_ratio"]["meta_regression_latitude"];
    for (const std::string key : {"FE_z", "REML_z", "REML_knha"}) {
        SCOPED_TRACE(key);
        const nlohmann::json& expected = figures[key];
        const double tau2 = expected.value("tau2", 0.0);
        const bool isAdjusted = key == "REML_knha"; // after Knapp and Hartung
        MARegSettings settings = WithIntercept();
        settings.SetEstTauType("REML");
        settings.SetKnapHartAdjust(isAdjusted);
        settings.SetTestDistType(isAdjusted ? TEST_STUDENT_T : TEST_STANDARD_NORMAL);
        Trials trials(key == "FE_z" ? MODEL_FIXED : MODEL_RANDOM);
        trials.settings.SetTau2Search(TAU2_SEARCH_GLOBAL); // which the plot shares
        const MABinModel model = trials.Plotted(settings);
        ASSERT_EQ(model.GetBubbleFlags(), std::vector<int>{1});
        EXPECT_TRUE(Close(model.GetBubbleCoefs()[0], expected["b"].get<Row>(), referenceTolerance));
        ExpectStudiesOnTheLine(model, tau2);
        const auto ofSlope = [&](const char* name) { return Number(expected[name][1]); };
        EXPECT_TRUE(Close(model.GetBubbleSlopeStdError()[0], ofSlope("se"), referenceTolerance));
        EXPECT_TRUE(Close(model.GetBubbleSlopeVal()[0], ofSlope("stat"), referenceTolerance));
        EXPECT_TRUE(Close(model.GetBubbleSlopeCILower()[0], ofSlope("ci_lower"), referenceTolerance));
        EXPECT_TRUE(Close(model.GetBubbleSlopeCIUpper()[0], ofSlope("ci_upper"), referenceTolerance));
        // A p-value is z² times as sensitive as z.
        const double z = ofSlope("stat");
        EXPECT_TRUE(Close(model.GetBubbleSlopeSig()[0], ofSlope("p"), z * z * referenceTolerance));

        // The adjusted error of the slope is the unadjusted one by the factor that the band has, too.
        const double factor =
            isAdjusted ? Number(expected["se"][1]) / Number(figures["REML_z"]["se"][1]) : 1.0;
        const double quantile = isAdjusted ? KXDistFun::IdfT(0.975, 11.0) : KXDistFun::IdfStdNorm(0.975);
        const Row curveX = model.GetBubbleCICurveX()[0];
        ASSERT_EQ(curveX, (Row{13, 34, 55}));
        for (std::size_t i = 0; i < curveX.size(); ++i) {
            const LeastSquares fit = LineAt(curveX[i], model, tau2);
            const auto value = static_cast<double>(fit.Coefficients()[0]);
            const double stdError = static_cast<double>(std::sqrt(fit.InverseDiagonal(0)));
            const double margin = quantile * factor * stdError;
            EXPECT_TRUE(Close(model.GetBubbleCICurveLower()[0][i], value - margin, referenceTolerance));
            EXPECT_TRUE(Close(model.GetBubbleCICurveUpper()[0][i], value + margin, referenceTolerance));
            const double predicted = std::hypot(margin, quantile * std::sqrt(tau2));
            const double upperLimit = model.GetBubblePICurveUpper()[0][i];
            EXPECT_TRUE(key == "FE_z" ? Same(upperLimit, missing)
                                      : Close(upperLimit, value + predicted, referenceTolerance, predicted));
        }
    }
}

TEST(BubblePlots, CentringMovesXAndTheInterceptAlone)
{
    Trials trials(MODEL_RANDOM);
    const MABinModel plain = trials.Plotted(WithIntercept());
    trials.settings.SetCenterBubblePlot(true);
    const MABinModel centred = trials.Plotted(WithIntercept());

    const Row x = plain.GetBubbleXs()[0];
    const double mean = std::accumulate(x.begin(), x.end(), 0.0) / 13;
    const auto uncentred = [mean](Row values) {
        for (double& value : values)
            value += mean;
        return values;
    };
    // Both fits stop their iterations within the settings' tolerance of the same tau².
    constexpr double tolerance = 1e-9;
    EXPECT_TRUE(Close(uncentred(centred.GetBubbleXs()[0]), x, 8 * machineEpsilon));
    EXPECT_TRUE(Close(uncentred(centred.GetBubbleCICurveX()[0]), plain.GetBubbleCICurveX()[0], tolerance));
    const Row line = plain.GetBubbleCoefs()[0];
    EXPECT_TRUE(Close(centred.GetBubbleCoefs()[0], {line[0] + mean * line[1], line[1]}, tolerance));
    for (const auto getter : {&MABinModel::GetBubblePredVals, &MABinModel::GetBubbleW,
                              &MABinModel::GetBubbleCILower, &MABinModel::GetBubbleCIUpper,
                              &MABinModel::GetBubbleCICurveLower, &MABinModel::GetBubbleCICurveUpper})
        EXPECT_TRUE(Close((centred.*getter)()[0], (plain.*getter)()[0], tolerance));
}

TEST(BubblePlots, LeaveOutWhatCannotBePlotted)
{
    Trials trials(MODEL_FIXED);
    for (Row& record : trials.data.rows)
        record[static_cast<std::size_t>(trials.data.IndexOf("allocation"))] = 1;
    trials.data.rows[2][static_cast<std::size_t>(trials.data.IndexOf("latitude"))] = missing;
    trials.settings.SetBubbleCurveNPoints(1);

    const MABinModel model = trials.Plotted(WithIntercept(), {"allocation", "latitude"});
    EXPECT_EQ(model.GetBubbleFlags(), (std::vector<int>{0, 1}));
    EXPECT_TRUE(model.GetBubbleXs()[0].empty());
    EXPECT_TRUE(model.GetBubbleCICurveX()[0].empty());
    EXPECT_EQ(model.GetBubbleXs()[1].size(), model.GetEffectSize().size());
    for (const auto getter : {&MABinModel::GetBubbleXs, &MABinModel::GetBubbleW,
                              &MABinModel::GetBubblePredVals, &MABinModel::GetBubbleCIUpper})
        EXPECT_TRUE(Same((model.*getter)()[1][2], missing));
    EXPECT_EQ(model.GetBubbleCICurveX()[1], Row{13});
}

/// Centring would move the line, which has no intercept to move with it.
TEST(BubblePlots, WithoutInterceptRunUncentredThroughTheOrigin)
{
    Trials trials(MODEL_FIXED);
    const MABinModel plain = trials.Plotted(MARegSettings());
    ASSERT_EQ(plain.GetBubbleCoefs()[0].size(), 1U);
    EXPECT_TRUE(Close(plain.GetBubblePredVals()[0][0], plain.GetBubbleCoefs()[0][0] * 44, machineEpsilon));
    trials.settings.SetCenterBubblePlot(true);
    const MABinModel centred = trials.Plotted(MARegSettings());
    EXPECT_EQ(centred.GetBubbleXs(), plain.GetBubbleXs());
    EXPECT_EQ(centred.GetBubbleCoefs(), plain.GetBubbleCoefs());
}

TEST(BubblePlots, NeedAnEstimatorUnderRandomEffectsAndAHostThatGoesOn)
{
    struct : KXQueryCancel
    {
        bool IsCancelled() override { return true; }
    } static always;
    struct Case
    {
        void (*change)(MARegSettings&);
        MODELTYPE model;
        int code;
    };
    const Case cases[] = {
        {[](MARegSettings& s) { s.SetEstTauType("reml"); }, MODEL_RANDOM, MAStatusCode::TAU2_FAILED},
        {[](MARegSettings& s) { s.SetEstTauType("reml"); }, MODEL_FIXED, 0}, // which estimates none
        {[](MARegSettings& s) { s.SetCancelObject(&always); }, MODEL_FIXED, MAStatusCode::ITERATOR_FAILED},
    };
    for (const Case& one : cases) {
        const Trials trials(one.model);
        MABinModel model = trials.Plotted(WithIntercept(), {});
        MARegSettings regression = WithIntercept();
        regression.AddCovariate(trials.data.IndexOf("latitude"));
        one.change(regression);
        VectorRecordIter records(trials.data.rows);
        EXPECT_EQ(model.BubblePlot(records, VariablesOf(trials.data.rows), regression), KXStatus(one.code));
        EXPECT_EQ(model.GetBubbleFlags().empty(), one.code != 0);
    }
}

TEST(BubblePlots, KeepToTheIterationsOfTheSettings)
{
    const Trials trials(MODEL_RANDOM);
    MARegSettings regression = WithIntercept();
    regression.SetEstTauType("REML");
    const MABinModel whole = trials.Plotted(regression);
    regression.SetMaxIterations(1);
    EXPECT_NE(trials.Plotted(regression).GetBubbleCoefs(), whole.GetBubbleCoefs());
}
