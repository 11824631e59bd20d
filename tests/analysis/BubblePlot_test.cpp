#include "support/Compare.h"
#include "support/LeastSquares.h"
#include "support/Reference.h"

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/platform/common/KXDistFun.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"

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

/// Log risk ratios of the BCG trials, and the bubble plots over columns of their file.
class Trials
{
public:
    explicit Trials(MODELTYPE model) : settings_(TableSettings(data_.IndexOf("treatment_events")))
    {
        for (const std::string& column : data_.columns)
            variables_.AddContVar(column, column);
        settings_.SetBinaryEstType(BIN_RISK_RATIO);
        settings_.SetModelType(model);
        settings_.SetBubbleCurveNPoints(3);
    }

    MAModelSettings& Settings() { return settings_; }
    Rows& Records() { return data_.rows; }
    int IndexOf(const std::string& column) const { return data_.IndexOf(column); }

    MABinModel Plotted(MARegSettings regression, const std::vector<int>& covariates)
    {
        MABinModel model(settings_);
        VectorRecordIter records(data_.rows);
        EXPECT_FALSE(model.RUN(records, variables_).IsError());
        for (const int covariate : covariates)
            regression.AddCovariate(covariate);
        EXPECT_FALSE(model.BubblePlot(records, variables_, regression).IsError());
        return model;
    }
    MABinModel PlottedOverLatitude(const MARegSettings& regression = WithIntercept())
    {
        return Plotted(regression, {IndexOf("latitude")});
    }

private:
    DataSet data_{"bcg_vaccine"};
    KXVarList variables_;
    MAModelSettings settings_;
};

/// A regression, and its key among the reference figures.
struct Regression
{
    std::string key;
    MODELTYPE model;
    bool isAdjusted; ///< after Knapp and Hartung
    TESTDISTTYPE distribution;
};

const Regression regressions[] = {
    {"FE_z", MODEL_FIXED, false, TEST_STANDARD_NORMAL},
    {"REML_z", MODEL_RANDOM, false, TEST_STANDARD_NORMAL},
    {"REML_knha", MODEL_RANDOM, true, TEST_STUDENT_T},
};

MARegSettings SettingsOf(const Regression& regression)
{
    MARegSettings settings = WithIntercept();
    settings.SetEstTauType("REML");
    settings.SetKnapHartAdjust(regression.isAdjusted);
    settings.SetTestDistType(regression.distribution);
    settings.SetMaxStepHalvingValue(50);
    settings.SetParameterTolerance(1e-12);
    return settings;
}

nlohmann::json FiguresOf(const std::string& key)
{
    return LoadReference("bcg_vaccine")["risk_ratio"]["meta_regression_latitude"][key];
}

/// The line at x: the intercept of the regression on the distance from x.
struct Line
{
    Line(const MABinModel& model, double tau2, double x)
    {
        Rows records;
        LeastSquares::Vector weights;
        const std::vector<double> xs = model.GetBubbleXs()[0];
        for (std::size_t i = 0; i < xs.size(); ++i) {
            records.push_back({model.GetEffectSize()[i], 1.0, xs[i] - x});
            weights.push_back(1.0L / (static_cast<long double>(model.GetVariance()[i]) + tau2));
        }
        const LeastSquares fit(records, weights);
        value = static_cast<double>(fit.Coefficients()[0]);
        stdError = static_cast<double>(std::sqrt(fit.InverseDiagonal(0)));
    }
    double value;
    double stdError;
};

/// Both sides iterate tau², here 0.08, to a step of 1e-12; the line and its band move by the same share.
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

TEST(BubblePlot, HasTheLineOfThePublishedRegression)
{
    for (const Regression& regression : regressions) {
        SCOPED_TRACE(regression.key);
        const nlohmann::json expected = FiguresOf(regression.key);
        const double tau2 = expected.value("tau2", 0.0);
        const MABinModel model = Trials(regression.model).PlottedOverLatitude(SettingsOf(regression));
        ASSERT_EQ(model.GetBubbleFlags(), std::vector<int>{1});
        EXPECT_TRUE(Close(model.GetBubbleCoefs()[0], expected["b"].get<Row>(), referenceTolerance));
        ExpectStudiesOnTheLine(model, tau2);

        // The adjusted error of the slope is the unadjusted one by the factor that the band has, too.
        const double factor =
            regression.isAdjusted ? Number(expected["se"][1]) / Number(FiguresOf("REML_z")["se"][1]) : 1.0;
        const double quantile = regression.distribution == TEST_STUDENT_T ? KXDistFun::IdfT(0.975, 11.0)
                                                                          : KXDistFun::IdfStdNorm(0.975);
        const Row curveX = model.GetBubbleCICurveX()[0];
        ASSERT_EQ(curveX, (Row{13, 34, 55}));
        for (std::size_t i = 0; i < curveX.size(); ++i) {
            const Line line(model, tau2, curveX[i]);
            const double margin = quantile * factor * line.stdError;
            EXPECT_TRUE(Close(model.GetBubbleCICurveLower()[0][i], line.value - margin, referenceTolerance));
            EXPECT_TRUE(Close(model.GetBubbleCICurveUpper()[0][i], line.value + margin, referenceTolerance));
        }
    }
}

TEST(BubblePlot, CenteringMovesXAndTheInterceptAlone)
{
    Trials trials(MODEL_RANDOM);
    const MABinModel plain = trials.PlottedOverLatitude();
    trials.Settings().SetCenterBubblePlot(true);
    const MABinModel centred = trials.PlottedOverLatitude();

    const std::vector<double> x = plain.GetBubbleXs()[0];
    const double mean = std::accumulate(x.begin(), x.end(), 0.0) / 13;
    const auto moved = [&](std::vector<double> values) {
        for (double& value : values)
            value -= mean;
        return values;
    };
    // Both fits stop their iterations within the settings' tolerance of the same tau².
    constexpr double tolerance = 1e-9;
    EXPECT_TRUE(Close(centred.GetBubbleXs()[0], moved(x), 8 * machineEpsilon));
    EXPECT_TRUE(Close(centred.GetBubbleCICurveX()[0], moved(plain.GetBubbleCICurveX()[0]), tolerance));
    const std::vector<double> coefficients = plain.GetBubbleCoefs()[0];
    EXPECT_TRUE(Close(centred.GetBubbleCoefs()[0],
                      {coefficients[0] + mean * coefficients[1], coefficients[1]}, tolerance));
    for (const auto getter : {&MABinModel::GetBubblePredVals, &MABinModel::GetBubbleW,
                              &MABinModel::GetBubbleCILower, &MABinModel::GetBubbleCIUpper,
                              &MABinModel::GetBubbleCICurveLower, &MABinModel::GetBubbleCICurveUpper})
        EXPECT_TRUE(Close((centred.*getter)()[0], (plain.*getter)()[0], tolerance));
}

TEST(BubblePlot, LeavesOutWhatItCannotPlot)
{
    Trials trials(MODEL_FIXED);
    const int latitude = trials.IndexOf("latitude");
    const int constant = trials.IndexOf("allocation");
    for (Row& record : trials.Records())
        record[static_cast<std::size_t>(constant)] = 1;
    trials.Records()[2][static_cast<std::size_t>(latitude)] = missing;
    trials.Settings().SetBubbleCurveNPoints(1);

    const MABinModel model = trials.Plotted(WithIntercept(), {constant, latitude});
    EXPECT_EQ(model.GetBubbleFlags(), (std::vector<int>{0, 1}));
    EXPECT_TRUE(model.GetBubbleXs()[0].empty());
    EXPECT_TRUE(model.GetBubbleCICurveX()[0].empty());
    EXPECT_EQ(model.GetBubbleXs()[1].size(), model.GetEffectSize().size());
    for (const auto getter : {&MABinModel::GetBubbleXs, &MABinModel::GetBubbleW,
                              &MABinModel::GetBubblePredVals, &MABinModel::GetBubbleCIUpper})
        EXPECT_TRUE(Same((model.*getter)()[1][2], missing));
    EXPECT_EQ(model.GetBubbleCICurveX()[1], std::vector<double>{13});
}

TEST(BubblePlot, WithoutInterceptRunsThroughTheOrigin)
{
    const MABinModel model = Trials(MODEL_FIXED).PlottedOverLatitude(MARegSettings());
    ASSERT_EQ(model.GetBubbleCoefs()[0].size(), 1U);
    EXPECT_TRUE(Close(model.GetBubblePredVals()[0][0], model.GetBubbleCoefs()[0][0] * 44, machineEpsilon));
}

} // namespace
