// Meta-regressions of published data against figures computed independently.

#include "support/Reference.h"
#include "support/Regression.h"

#include "meta_analysis/settings/MAStatusCode.h"

using namespace MA_NAMESPACE;
using nlohmann::json;

namespace {

/// The figures have 15 digits, less those that their own solver lost.
constexpr double closedFormTolerance = 1e-12;
/// The figures and the library stop below a step of 1e-12, slowly converging ones a little before the root.
constexpr double iterativeTolerance = 1e-10;
/// By how much the relative error of a p-value exceeds that of its statistic, which is below 10.
constexpr double tailFactor = 100.0;

struct Model
{
    const char* dataSet;
    const char* figures;
    std::vector<std::string> moderators;
    bool isFactor = false;
    double origin = 0; ///< of the last moderator
    double cap = infinity;
};

const Model models[] = {
    {"bcg_vaccine", "meta_regression_latitude", {"latitude"}},
    {"bcg_vaccine", "meta_regression_latitude_and_year_minus_1900", {"latitude", "year"}, false, 1900},
    {"bcg_vaccine", "meta_regression_allocation_factor_reference_2", {"allocation"}, true},
    {"teacher_expectancy", "meta_regression_weeks", {"weeks"}},
    {"teacher_expectancy", "meta_regression_weeks_capped_at_3", {"weeks"}, false, 0, 3},
    {"writing_to_learn", "meta_regression_length_wic_feedback", {"length", "wic", "feedback"}},
};

json ReferenceOf(const Model& model)
{
    const json reference = LoadReference(model.dataSet);
    return reference.contains("risk_ratio") ? reference.at("risk_ratio") : reference;
}

/// Effects and variances are columns of the data set, or log risk ratios among the figures.
Rows RowsOf(const Model& model)
{
    const DataSet data(model.dataSet);
    const bool hasTables = model.dataSet == std::string("bcg_vaccine");
    const json ratios = hasTables ? LoadReference(model.dataSet).at("tables").at("RR_only0") : json();
    Rows rows;
    for (const Row& study : data.rows) {
        const auto at = [&](const std::string& name) {
            return study[static_cast<std::size_t>(data.IndexOf(name))];
        };
        if (hasTables)
            rows.push_back({ratios.at("yi").at(rows.size()), ratios.at("vi").at(rows.size())});
        else
            rows.push_back({at("effect"), at("variance")});
        for (const std::string& moderator : model.moderators)
            rows.back().push_back(at(moderator));
        double& last = rows.back().back();
        last = KXMV::IsMissing(last) ? last : std::min(last - model.origin, model.cap);
    }
    return rows;
}

MARegSettings SettingsOf(const Model& model)
{
    if (model.isFactor)
        return RegressionOn({}, {2});
    std::vector<int> covariates;
    for (std::size_t i = 0; i < model.moderators.size(); ++i)
        covariates.push_back(static_cast<int>(i) + 2);
    return RegressionOn(covariates);
}

void ExpectCoefficients(const MARegOutputStats& output, const json& figures, double tolerance)
{
    const std::size_t count = figures.at("b").size();
    ASSERT_GE(output.GetEstimation().size(), count);
    for (std::size_t j = 0; j < count; ++j) {
        SCOPED_TRACE(testing::Message() << "coefficient " << j);
        const double stdError = figures.at("se")[j];
        EXPECT_TRUE(Close(output.GetEstimation()[j], figures.at("b")[j], tolerance, stdError));
        EXPECT_TRUE(Close(output.GetBetaStandErr()[j], stdError, tolerance));
        EXPECT_TRUE(Close(output.GetBetaTest()[j], figures.at("stat")[j], tolerance, 1.0));
        EXPECT_TRUE(Close(output.GetBetaTestPValue()[j], figures.at("p")[j], tailFactor * tolerance));
        if (!figures.contains("ci_lower"))
            continue;
        EXPECT_TRUE(
            Close(output.GetBetaConfInterValLower()[j], figures.at("ci_lower")[j], tolerance, stdError));
        EXPECT_TRUE(
            Close(output.GetBetaConfInterValUpper()[j], figures.at("ci_upper")[j], tolerance, stdError));
    }
    for (std::size_t j = count; j < output.GetEstimation().size(); ++j)
        EXPECT_TRUE(Same(output.GetEstimation()[j], missing)) << "the last level is the reference";
}

void ExpectModelTests(const MARegOutputStats& output, const json& figures, double tolerance)
{
    const auto tested = static_cast<int>(figures.at("b").size()) - 1;
    if (figures.contains("wald")) {
        EXPECT_EQ(output.GetWaldDf(), figures.at("wald_df"));
        EXPECT_TRUE(Close(output.GetWaldChiSquareTest(), figures.at("wald"), tolerance));
        EXPECT_TRUE(Close(output.GetWaldPValue(), figures.at("wald_p"), tailFactor * tolerance));
    }
    if (figures.contains("F")) {
        EXPECT_EQ(output.GetFDf1(), tested);
        EXPECT_EQ(output.GetFDf2(), figures.at("QE_df"));
        EXPECT_TRUE(Close(output.GetFTestVal(), figures.at("F"), tolerance));
        EXPECT_TRUE(Close(output.GetFPValue(), figures.at("F_p"), tailFactor * tolerance));
    }
}

void ExpectHeterogeneity(const MARegOutputStats& output, const json& figures, double tolerance)
{
    EXPECT_TRUE(Close(output.GetResHomoChiSqure(), figures.at("QE"), closedFormTolerance));
    EXPECT_EQ(output.GetResHomoDf(), figures.at("QE_df"));
    EXPECT_TRUE(Close(output.GetResHomoPValue(), figures.at("QE_p"), tailFactor * tolerance));
    EXPECT_TRUE(Close(output.GetHresSquare(), figures.at("H2"), tolerance));
    EXPECT_TRUE(Close(output.GetIresSquare(), figures.at("I2"), tolerance, 1.0));
    // The figures' last step of the iteration is below 1e-12, which is all of a tau² at the boundary.
    EXPECT_NEAR(output.GetTau(), figures.value("tau2", 0.0), 1e-12 + tolerance * output.GetTau());
    EXPECT_TRUE(Close(output.GetRSquare(), figures.value("R2", 0.0), tolerance, 1.0));
}

MARegSettings WithTest(MARegSettings settings, const std::string& test)
{
    settings.SetTestDistType(test == "z" ? MAConst::TEST_STANDARD_NORMAL : MAConst::TEST_STUDENT_T);
    settings.SetKnapHartAdjust(test == "knha" || test == "adhoc");
    settings.SetTruncAjustValue(test == "adhoc");
    return settings;
}

template <class Engine>
void ExpectFigures(const MARegSettings& settings, const Rows& rows, const json& figures, double tolerance)
{
    const Regression<Engine> regression(settings, rows);
    const MARegOutputStats& output = *regression.output;
    ASSERT_TRUE(regression.status.IsOK());
    ExpectCoefficients(output, figures, tolerance);
    ExpectModelTests(output, figures, tolerance);
    ExpectHeterogeneity(output, figures, tolerance);
    const int usable = figures.at("QE_df").get<int>() + static_cast<int>(figures.at("b").size());
    EXPECT_EQ(output.GetNGoodRecords(), usable) << "studies with a missing moderator are left out";
    EXPECT_EQ(output.GetNBadRecords(), static_cast<int>(rows.size()) - usable);
    EXPECT_EQ(regression.WarningCodes(), std::vector<int>(output.GetNBadRecords() > 0 ? 1 : 0, MAStatusCode::UNUSABLE_RECORD));
}

} // namespace

/// The figures' Hunter-Schmidt estimator is another one; and their steps are halved as often as it takes,
/// which matters where tau² ends at the boundary (weeks capped at 3).
TEST(MetaRegressionFigures, EveryEstimatorAndTest)
{
    for (const Model& model : models) {
        const Rows rows = RowsOf(model);
        const json figures = ReferenceOf(model).at(model.figures);
        for (const std::string method : {"FE", "HE", "DL", "SJ", "ML", "REML", "EB"}) {
            for (const std::string test : {"z", "t", "knha", "adhoc"}) {
                SCOPED_TRACE(model.figures + (" " + method) + " " + test);
                MARegSettings settings = WithTest(SettingsOf(model), test);
                settings.SetEstTauType(method.c_str());
                settings.SetMaxStepHalvingValue(100);
                const bool isIterative = method == "ML" || method == "REML" || method == "EB";
                const double tolerance = isIterative ? iterativeTolerance : closedFormTolerance;
                if (method != "FE")
                    ExpectFigures<MAREAlgorithm>(settings, rows, figures.at(method + "_" + test), tolerance);
                else if (figures.contains("FE_" + test))
                    ExpectFigures<MAFEAlgorithm>(settings, rows, figures.at("FE_" + test), tolerance);
            }
        }
    }
}

/// The dispersion enters the model test once.
TEST(MetaRegressionFigures, MultiplicativeDispersion)
{
    for (const Model& model : models) {
        SCOPED_TRACE(model.figures);
        const json figures = ReferenceOf(model).at(model.figures);
        const json& expected = figures.at("FE_multiplicative");
        const double dispersion = expected.at("dispersion");
        MARegSettings settings = SettingsOf(model);
        settings.SetMultiDiser(true);
        const FERegression regression(settings, RowsOf(model));
        ExpectCoefficients(*regression.output, expected, closedFormTolerance);
        EXPECT_TRUE(Close(regression.output->GetMultiDisper(), dispersion, closedFormTolerance));
        const double wald = figures.at("FE_z").at("wald");
        EXPECT_TRUE(Close(regression.output->GetWaldChiSquareTest(), wald / dispersion, closedFormTolerance));
        const double q = figures.at("FE_z").at("QE");
        EXPECT_TRUE(Close(regression.output->GetResHomoChiSqure(), q, closedFormTolerance));
    }
}
