#pragma once

#include "support/Compare.h"
#include "support/FinishedRun.h"
#include "support/Reference.h"

#include "meta_analysis/analysis/MABaseModel.h"

// Comparison of a run's results with the reference figures of a data set.

/// A relative error d of a statistic z changes its p-value by about z² d, with |z| below 20 (Q below 800).
constexpr double tailFactor = 400.0;

/// The figures have 15 digits, but some were computed by differences that cancel up to four of these: Q as a
/// quadratic form, and the gamma functions of Hedges' correction by their logarithms.
constexpr double closedFormTolerance = 1e-11;
constexpr double studyTolerance = 1e-12;

/// The figures and the library stop below a step of 1e-12, slowly converging ones a little before the root.
constexpr double iterativeTolerance = 1e-9;

/// All records of a run are studies or, for one reason by which they are counted, none is.
inline void ExpectExcluded(const MA_NAMESPACE::MABaseModel& model, int count, MAConst::EXCLUSION reason)
{
    const auto countIf = [&](bool isCounted) { return isCounted ? count : 0; };
    const bool areStudies = reason == MAConst::EXCLUSION_NONE;
    const bool areMissing = reason == MAConst::EXCLUSION_MISSING_VALUE;
    const bool areDropped = reason == MAConst::EXCLUSION_DROPPED;
    EXPECT_EQ(static_cast<int>(model.GetEffectSize().size()), countIf(areStudies));
    EXPECT_EQ(model.GetExclusionReason(),
              std::vector<int>(static_cast<std::size_t>(countIf(!areStudies)), reason));
    EXPECT_EQ(model.GetNMissing(), countIf(areMissing));
    EXPECT_EQ(model.GetNDropped(), countIf(areDropped));
    EXPECT_EQ(model.GetNInvalid(), countIf(!areStudies && !areMissing && !areDropped));
}

/// The studies' own tests and 95% intervals follow from their effects and variances.
inline void ExpectStudyTests(const MA_NAMESPACE::MABaseModel& model)
{
    constexpr double tolerance = 8 * machineEpsilon; // a handful of roundings
    for (std::size_t i = 0; i < model.GetEffectSize().size(); ++i) {
        const double effect = model.GetEffectSize()[i];
        const double stdError = std::sqrt(model.GetVariance()[i]);
        const double margin = 1.959963984540054 * stdError;
        EXPECT_TRUE(Close(model.GetStdError().at(i), stdError, tolerance));
        EXPECT_TRUE(Close(model.GetZVal().at(i), effect / stdError, tolerance));
        const double pValue = std::erfc(std::abs(effect / stdError) / std::sqrt(2.0));
        EXPECT_TRUE(Close(model.GetSig().at(i), pValue, tailFactor * tolerance));
        EXPECT_TRUE(Close(model.GetCILower().at(i), effect - margin, tolerance, margin));
        EXPECT_TRUE(Close(model.GetCIUpper().at(i), effect + margin, tolerance, margin));
    }
}

inline void ExpectEstimate(const MA_NAMESPACE::MABaseModel& model, double estimate, double stdError,
                           double statistic, double significance, double lower, double upper,
                           double tolerance)
{
    const double scale = stdError + std::abs(estimate);
    ASSERT_EQ(model.GetEstEffectSize().size(), 1U);
    EXPECT_TRUE(Close(model.GetEstEffectSize()[0], estimate, tolerance, scale));
    EXPECT_TRUE(Close(model.GetEstStdError()[0], stdError, tolerance));
    EXPECT_TRUE(Close(model.GetEstZVal()[0], statistic, tolerance, 1.0));
    EXPECT_TRUE(Close(model.GetEstSig()[0], significance, tailFactor * tolerance));
    EXPECT_TRUE(Close(model.GetEstCILower()[0], lower, tolerance, scale));
    EXPECT_TRUE(Close(model.GetEstCIUpper()[0], upper, tolerance, scale));
}

/// Q, H² and I² with intervals, as the fixed-effect models report them.
inline void ExpectHeterogeneity(const MA_NAMESPACE::MABaseModel& model, const nlohmann::json& fixed)
{
    constexpr double tolerance = closedFormTolerance;
    EXPECT_TRUE(Close(model.GetHomoTestChisquareQ(), {fixed.at("Q")}, tolerance));
    EXPECT_TRUE(Same(model.GetHomoTestdf(), {fixed.at("Q_df")}));
    const double pValue = fixed.at("Q_p"); // there 1 - P
    EXPECT_NEAR(model.GetHomoTestSig().at(0), pValue, 1e-15 + tailFactor * tolerance * pValue);
    const Row h2 = {model.GetH2Index().at(0), model.GetH2CILower().at(0), model.GetH2CIUpper().at(0)};
    EXPECT_TRUE(Close(h2, {fixed.at("H2"), fixed.at("H2_ci")[0], fixed.at("H2_ci")[1]}, tolerance));
    const Row i2 = {model.GetI2Index().at(0), model.GetI2CILower().at(0), model.GetI2CIUpper().at(0)};
    EXPECT_TRUE(Close(i2, {fixed.at("I2"), fixed.at("I2_ci")[0], fixed.at("I2_ci")[1]}, tolerance, 1.0));
}

inline void ExpectFixed(const MA_NAMESPACE::MABaseModel& model, const nlohmann::json& fixed)
{
    ExpectEstimate(model, fixed.at("estimate"), fixed.at("se"), fixed.at("z"), fixed.at("p"),
                   fixed.at("ci_lower"), fixed.at("ci_upper"), closedFormTolerance);
    ExpectHeterogeneity(model, fixed);
    EXPECT_TRUE(Same(model.GetTau2Var(), {missing}));
    EXPECT_TRUE(Same(model.GetPILower(), {missing}));
}

inline void ExpectRandom(const MA_NAMESPACE::MABaseModel& model, const nlohmann::json& pooled,
                         const std::string& estimator, const std::string& adjustment, double tolerance)
{
    const nlohmann::json& tau2Figures = pooled.at(estimator);
    const nlohmann::json& figures = tau2Figures.at(adjustment);
    ExpectEstimate(model, figures.at("estimate"), std::sqrt(figures.at("variance").get<double>()),
                   figures.at("stat"), figures.at("p"), figures.at("ci_lower"), figures.at("ci_upper"),
                   tolerance);
    const double tau2 = tau2Figures.at("tau2");
    const double spread = std::abs(figures.at("estimate").get<double>()) + std::sqrt(tau2);
    EXPECT_TRUE(Close(model.GetPILower().at(0), figures.at("pi_lower"), tolerance, spread));
    EXPECT_TRUE(Close(model.GetPIUpper().at(0), figures.at("pi_upper"), tolerance, spread));
    EXPECT_TRUE(Close(model.GetTau2Var().at(0), tau2, tolerance));
    EXPECT_TRUE(Close(model.GetH2Index().at(0), tau2Figures.at("H2"), tolerance));
    EXPECT_TRUE(Close(model.GetI2Index().at(0), tau2Figures.at("I2"), tolerance));
    EXPECT_TRUE(Close(model.GetHomoTestChisquareQ().at(0), pooled.at("fixed").at("Q"), closedFormTolerance));
    EXPECT_TRUE(Same(model.GetH2CILower(), {missing}));
}

/// Runs the driver under the fixed-effect model and under every estimator and adjustment.
template <class Driver>
void ExpectPooled(MA_NAMESPACE::MAModelSettings settings, const Rows& rows, const nlohmann::json& pooled)
{
    settings.SetConvergenceTol(1e-12);
    settings.SetModelType(MAConst::MODEL_FIXED);
    const FinishedRun<Driver> fixed(settings, rows);
    EXPECT_TRUE(fixed.status.IsOK());
    ExpectFixed(fixed.model, pooled.at("fixed"));

    settings.SetModelType(MAConst::MODEL_RANDOM);
    const char* const estimators[] = {"HE", "HS", "DL", "SJ", "ML", "REML", "EB"};
    for (int estimator = MAConst::TAU2_HE; estimator <= MAConst::TAU2_EB; ++estimator) {
        for (int adjustment = 0; adjustment <= MAConst::KNAPP_HARTUNG_TRUNCATED; ++adjustment) {
            SCOPED_TRACE(testing::Message() << estimators[estimator] << " kh" << adjustment);
            settings.SetEstTauType(static_cast<MAConst::TAU2ESTIMATOR>(estimator));
            settings.SetKnapHartAdjustType(static_cast<MAConst::KNAPPHADJTYPE>(adjustment));
            const FinishedRun<Driver> random(settings, rows);
            EXPECT_TRUE(random.status.IsOK());
            const bool isIterative = estimator >= MAConst::TAU2_ML;
            ExpectRandom(random.model, pooled, estimators[estimator], "kh" + std::to_string(adjustment),
                         isIterative ? iterativeTolerance : closedFormTolerance);
        }
    }
}
