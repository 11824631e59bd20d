// Meta-regressions of published data against figures computed independently.

#include "support/Published.h"
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

Rows RowsOf(const Model& model)
{
    Rows rows = StudiesWith(model.moderators, model.dataSet);
    for (Row& row : rows) {
        double& last = row.back();
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
    const Row stdErrors = figures.at("se");
    const std::size_t count = stdErrors.size();
    const auto expect = [&](const Row& actual, const char* key, double relative, const Row& scales) {
        ASSERT_GE(actual.size(), count);
        for (std::size_t j = 0; j < actual.size() && figures.contains(key); ++j) {
            const double expected =
                j < count ? figures[key][j].get<double>() : missing; // the reference level
            EXPECT_TRUE(Close(actual[j], expected, relative, j < count ? scales[j] : 0.0)) << key << ' ' << j;
        }
    };
    expect(output.GetEstimation(), "b", tolerance, stdErrors);
    expect(output.GetBetaStandErr(), "se", tolerance, Row(count));
    expect(output.GetBetaTest(), "stat", tolerance, Row(count, 1.0));
    expect(output.GetBetaTestPValue(), "p", tailFactor * tolerance, Row(count));
    expect(output.GetBetaConfInterValLower(), "ci_lower", tolerance, stdErrors);
    expect(output.GetBetaConfInterValUpper(), "ci_upper", tolerance, stdErrors);
}

/// Of the figures that there are. The last step of their iteration, below 1e-12, is all of a tau² at the
/// boundary.
void ExpectModel(const MARegOutputStats& output, const json& figures, double tolerance)
{
    struct Figure
    {
        const char* key;
        double actual, tolerance;
        double scale = 0.0;
    };
    const Figure expected[] = {
        {"wald_df", 1.0 * output.GetWaldDf(), 0.0},
        {"wald", output.GetWaldChiSquareTest(), tolerance},
        {"wald_p", output.GetWaldPValue(), tailFactor * tolerance},
        {"F", output.GetFTestVal(), tolerance},
        {"F_p", output.GetFPValue(), tailFactor * tolerance},
        {"QE", output.GetResHomoChiSqure(), closedFormTolerance},
        {"QE_df", output.GetResHomoDf(), 0.0},
        {"QE_p", output.GetResHomoPValue(), tailFactor * tolerance},
        {"H2", output.GetHresSquare(), tolerance},
        {"I2", output.GetIresSquare(), tolerance, 1.0},
        {"tau2", output.GetTau(), tolerance, 1e-12 / tolerance + output.GetTau()},
        {"R2", output.GetRSquare(), tolerance, 1.0},
    };
    for (const Figure& figure : expected) {
        if (!figures.contains(figure.key))
            continue;
        EXPECT_TRUE(Close(figure.actual, Number(figures[figure.key]), figure.tolerance, figure.scale))
            << figure.key;
    }
    if (figures.contains("F")) {
        EXPECT_EQ(output.GetFDf1(), static_cast<int>(figures.at("b").size()) - 1);
        EXPECT_EQ(output.GetFDf2(), figures.at("QE_df"));
    }
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
    ExpectModel(output, figures, tolerance);
    const int usable = figures.at("QE_df").get<int>() + static_cast<int>(figures.at("b").size());
    EXPECT_EQ(output.GetNGoodRecords(), usable) << "studies with a missing moderator are left out";
    EXPECT_EQ(output.GetNBadRecords(), static_cast<int>(rows.size()) - usable);
    EXPECT_EQ(regression.WarningCodes(),
              std::vector<int>(output.GetNBadRecords() > 0 ? 1 : 0, MAStatusCode::UNUSABLE_RECORD));
}

} // namespace

/// The figures' Hunter-Schmidt estimator is another one; and their steps are halved as often as it takes,
/// which matters where tau² ends at the boundary (weeks capped at 3).
TEST(MetaRegressionFigures, AreMetByEveryEstimatorAndTest)
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
TEST(MetaRegressionFigures, AreMetWithMultiplicativeDispersion)
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
