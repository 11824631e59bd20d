#include "support/Compare.h"
#include "support/StudyVectors.h"
#include "support/Tables.h"

#include "meta_analysis/pooling/MABinaryFixEffectModel.h"
#include "meta_analysis/pooling/MAContinousFixEffectModel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

const BINESTYPE methods[] = {BIN_ODDS_RATIO, BIN_PETO_ODDS_RATIO, BIN_RISK_RATIO, BIN_RISK_DIFFERENCE};
const Rows trials = {{4, 119, 11, 128}, {6, 300, 29, 274}, {3, 228, 11, 209}};

MABinaryFixEffectModel Given(Tables& tables, BINESTYPE method, ZEROADJTYPE adjustment = ZERO_ADJUST_NONE)
{
    MABinaryFixEffectModel model;
    tables.GiveTo(model);
    model.SetEstimationMethod(method);
    model.SetZeroAdjType(adjustment);
    return model;
}

MABinaryFixEffectModel Fitted(Tables& tables, BINESTYPE method)
{
    MABinaryFixEffectModel model = Given(tables, method);
    EXPECT_TRUE(model.ComputeEffectSizeStatistics().IsOK());
    return model;
}

/// The estimate and its standard error on the scale of the test.
std::pair<double, double> TestedEstimate(const MABinaryFixEffectModel& model, BINESTYPE method)
{
    if (method == BIN_RISK_DIFFERENCE)
        return {model.GetEstESVal(), model.GetEstESStdError()};
    return {model.GetLogEstESVal(), model.GetLogEstESStdError()};
}

} // namespace

TEST(MABinaryFixEffectModel, NullValueThatCannotBeMeantIsNoEffect)
{
    for (const BINESTYPE method : methods) {
        for (const double null : {0.0, 1.0, 0.5}) {
            SCOPED_TRACE(testing::Message() << "method " << method << ", null " << null);
            Tables tables(trials);
            MABinaryFixEffectModel model = Given(tables, method);
            model.SetNullHypothesis(null);
            model.ComputeEffectSizeStatistics();
            const bool isDifference = method == BIN_RISK_DIFFERENCE;
            const double noEffect = isDifference ? 0.0 : 1.0;
            const double meant = null == 0.5 ? null : noEffect;
            const auto [estimate, stdError] = TestedEstimate(model, method);
            EXPECT_DOUBLE_EQ(model.GetEstESZVal(),
                             (estimate - (isDifference ? meant : std::log(meant))) / stdError);
        }
    }
}

/// A study without an odds or risk ratio of its own still has its share in the pooled one.
TEST(MABinaryFixEffectModel, PooledRatiosAreRatiosOfSums)
{
    Tables tables({{10, 0, 8, 12}, {5, 15, 0, 20}, {0, 10, 3, 7}});
    const MABinaryFixEffectModel odds = Fitted(tables, BIN_ODDS_RATIO);
    EXPECT_DOUBLE_EQ(odds.GetEstESVal(), (10 * 12 / 30.0 + 5 * 20 / 40.0) / (10 * 3 / 20.0));
    EXPECT_EQ(odds.GetEstWeight(), (std::vector<double>{0, 0, 1.5}));
    const MABinaryFixEffectModel risk = Fitted(tables, BIN_RISK_RATIO);
    EXPECT_DOUBLE_EQ(risk.GetEstESVal(), (10 * 20 / 30.0 + 5 * 20 / 40.0) / (8 * 10 / 30.0 + 3 * 10 / 20.0));
}

/// Whatever constant is set, the correction adds 0.5; and again at every computation.
TEST(MABinaryFixEffectModel, ZeroCellCorrection)
{
    Tables tables({{1, 0, 3, 4}, {4, 5, 6, 7}});
    MABinaryFixEffectModel model = Given(tables, BIN_ODDS_RATIO, ZERO_ADJUST_ALL_IF_ANY);
    EXPECT_TRUE(model.SetZeroCountDelta(0.3).IsOK());
    model.ComputeEffectSizeStatistics();
    EXPECT_EQ(tables.ToRows(), (Rows{{1.5, 0.5, 3.5, 4.5}, {4.5, 5.5, 6.5, 7.5}}));
    model.SetZeroAdjType(ZERO_ADJUST_ALL);
    model.ComputeEffectSizeStatistics();
    EXPECT_EQ(tables.ToRows(), (Rows{{2, 1, 4, 5}, {5, 6, 7, 8}}));
}

TEST(MABinaryFixEffectModel, OtherScaleOfTheResults)
{
    Tables tables(trials);
    const MABinaryFixEffectModel difference = Fitted(tables, BIN_RISK_DIFFERENCE);
    EXPECT_LT(difference.GetEstESVal(), 0.0);
    EXPECT_TRUE(std::isnan(difference.GetLogEstESVal()));
    EXPECT_TRUE(std::isnan(difference.GetLogEstESCILower()));
    EXPECT_DOUBLE_EQ(difference.GetLogEstESVariance(), std::log(difference.GetEstESVariance()));
    EXPECT_DOUBLE_EQ(difference.GetLogEstESStdError(), std::log(difference.GetEstESStdError()));
    const MABinaryFixEffectModel odds = Fitted(tables, BIN_ODDS_RATIO);
    EXPECT_DOUBLE_EQ(odds.GetEstESVariance(), std::exp(odds.GetLogEstESVariance()));
    EXPECT_DOUBLE_EQ(odds.GetEstESStdError(), std::sqrt(odds.GetEstESVariance()));
}

TEST(MABinaryFixEffectModel, FewStudies)
{
    for (const BINESTYPE method : methods) {
        SCOPED_TRACE(method);
        Tables one({trials[0]});
        const MABinaryFixEffectModel single = Fitted(one, method);
        EXPECT_TRUE(std::isfinite(single.GetEstESSig()));
        EXPECT_EQ(single.GetHomogeneityTestQ(), missing);
        EXPECT_EQ(single.GetHomogeneityTestPVal(), missing);
        EXPECT_EQ(single.GetHeterogeneityTestH2(), missing);

        Tables two({trials[0], trials[0]});
        const MABinaryFixEffectModel pair = Fitted(two, method);
        EXPECT_NEAR(pair.GetHomogeneityTestQ(), 0.0, 1e-25); // squares of rounding errors
        EXPECT_NEAR(pair.GetHomogeneityTestPVal(), 1.0, 1e-12);
        EXPECT_EQ(pair.GetHomogeneityTestDf(), 1);
        EXPECT_EQ(pair.GetHeterogeneityTestI2(), 0.0);
        EXPECT_EQ(pair.GetHeterogeneityTestH2CIUpper(), missing);
    }
}

/// As those of the inverse-variance model of the same effects, but for the getters of z and standard error.
TEST(MABinaryFixEffectModel, Contrasts)
{
    for (const BINESTYPE method : methods) {
        SCOPED_TRACE(method);
        // The effect and variance of each table are those of the table pooled alone.
        std::vector<double> y, v;
        for (const Row& trial : trials) {
            Tables alone({trial});
            const auto [estimate, stdError] = TestedEstimate(Fitted(alone, method), method);
            y.push_back(estimate);
            v.push_back(stdError * stdError);
        }
        std::vector<double> g = {1, -1, 0.5};
        MAContinousFixEffectModel expected;
        expected.SetEffectSizes(&y);
        expected.SetVariances(&v);
        expected.SetContrastCoef(&g);
        Tables tables(trials);
        MABinaryFixEffectModel model = Fitted(tables, method);
        EXPECT_TRUE(model.ContrastTest().IsOK()); // no coefficients
        EXPECT_EQ(model.GetContrastTest2SidedSig(), missing);
        model.SetContrastCoef(&g);
        for (const double last : {0.5, missing}) {
            g.back() = last;
            EXPECT_EQ(model.ContrastTest(), expected.ContrastTest());
            constexpr double tolerance = 1e-13;
            EXPECT_TRUE(Close(model.GetContrastTestGMeans(), expected.GetContrastGMeans(), tolerance, 1.0));
            EXPECT_TRUE(Close(model.GetContrastTestStdError(), expected.GetContrastVariance(), tolerance));
            EXPECT_EQ(model.GetContrastTestZVal(), model.GetContrastTestStdError());
            EXPECT_NEAR(model.GetContrastTest2SidedSig(), expected.GetContrastSig(), tolerance);
            EXPECT_TRUE(Close(model.GetContrastTestCIUpper(), expected.GetContrastCIUpper(), tolerance, 1.0));
            EXPECT_TRUE(Close(model.GetContrastTestCILower(), expected.GetContrastCILower(), tolerance, 1.0));
        }
        g.push_back(0);
        EXPECT_EQ(model.ContrastTest(), KXStatus(MAStatusCode::LENGTH_MISMATCH));
    }
}

/// A contrast is of the effects computed last.
TEST(MABinaryFixEffectModel, ContrastAfterAnotherComputation)
{
    Tables tables(trials);
    const std::vector<double> g = {1, -1, 0};
    MABinaryFixEffectModel model = Fitted(tables, BIN_ODDS_RATIO);
    model.SetContrastCoef(&g);
    model.ContrastTest();
    model.SetEstimationMethod(BIN_RISK_DIFFERENCE);
    model.ComputeEffectSizeStatistics();
    model.ContrastTest();
    EXPECT_NEAR(model.GetContrastTestGMeans(), 4.0 / 123 - 11.0 / 139 - (6.0 / 306 - 29.0 / 303), 1e-16);
}

TEST(MABinaryFixEffectModel, HostileTablesAndUnknownMethod)
{
    const Rows hostile = {Row(4, 0),          Row(4, 1e150),   Row(4, 1e-150),
                          Row(4, notANumber), Row(4, missing), {infinity, 1, 1, 1},
                          {1, 0, 0, 0},       {0, 0, 1, 1},    Row(4, -1)};
    const std::vector<double> g(2, 1.0);
    for (int method = BIN_ODDS_RATIO; method <= BIN_RISK_DIFFERENCE + 1; ++method) {
        for (const Row& row : hostile) {
            Tables tables({trials[0], row});
            MABinaryFixEffectModel model = Fitted(tables, static_cast<BINESTYPE>(method));
            EXPECT_EQ(model.GetEstWeight().size(), 2U);
            model.SetContrastCoef(&g);
            EXPECT_TRUE(model.ContrastTest().IsOK());
            const double q = model.GetHomogeneityTestQ();
            EXPECT_EQ(std::isfinite(q) && q != missing, model.GetHomogeneityTestPVal() != missing);
        }
    }
}

TEST(MABinaryFixEffectModel, StudyVectorsAreChecked)
{
    using C = MABinaryFixEffectModel;
    using Setter = KXStatus (C::*)(std::vector<double>*);
    const std::vector<Setter> setters = {&C::SetTreatmentGSuccessCounts, &C::SetControlGSuccessCounts,
                                         &C::SetTreatmentGFailureCounts, &C::SetControlGFailureCounts};
    StudyVectors<C, Setter>(setters, &C::ComputeEffectSizeStatistics, MAStatusCode::LENGTH_MISMATCH)
        .ExpectChecked();
}
