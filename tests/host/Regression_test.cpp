// The command `regression`, run as a process.

#include "host/Getters.h"
#include "host/RunProgram.h"
#include "support/Compare.h"
#include "support/Data.h"
#include "support/Reference.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

using nlohmann::json;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const Arguments toJson = {"--json",           "-",     "--tolerance",        "1e-12",
                          "--max-iterations", "10000", "--max-step-halving", "100"};

/// The log risk ratios of BCG vaccination, with what the tests regress them on.
std::string VaccineData(const TemporaryFolder& folder)
{
    const DataSet data("bcg_vaccine");
    const json ratios = LoadReference("bcg_vaccine")["tables"]["RR_only0"];
    const char* const allocations[] = {"alternate", "random", "systematic"};
    std::string csv = "y,v,se,w,latitude,years,allocation,lat:years,random_lat,alternate_lat,lat2\n";
    for (std::size_t i = 0; i < data.rows.size(); ++i) {
        const auto at = [&](const char* column) {
            return data.rows[i][static_cast<std::size_t>(data.IndexOf(column))];
        };
        const double v = ratios["vi"][i];
        const double latitude = at("latitude");
        const double years = at("year") - 1900;
        const auto allocation = static_cast<std::size_t>(at("allocation"));
        csv +=
            fmt::format("{},{},{},{},{},{},{},{},{},{},{}\n", ratios["yi"][i].get<double>(), v, std::sqrt(v),
                        1 / v, latitude, years, allocations[allocation], latitude * years,
                        allocation == 1 ? latitude : 0, allocation == 0 ? latitude : 0, latitude * latitude);
    }
    return folder.Write("bcg.csv", csv);
}

Arguments Vaccine(const TemporaryFolder& folder)
{
    return {"regression", VaccineData(folder), "--effect-size", "y"};
}

json ResultsOf(const Arguments& arguments)
{
    const ProgramRun run = RunProgram(arguments + toJson);
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    return run.Json()["results"];
}

// The figures have 15 digits; solving the normal equations costs up to three of them.
constexpr double closedFormTolerance = 1e-12;
// The figures and the library stop below a step of 1e-12, slowly converging ones a little before the root.
constexpr double iterativeTolerance = 1e-10;

/// Figures come without the redundant coefficients, which are the last ones.
void ExpectCoefficients(const json& results, const json& figures, double tolerance)
{
    for (std::size_t j = 0; j < figures["b"].size(); ++j) {
        SCOPED_TRACE(results["Parameters"][j]);
        const double stdError = figures["se"][j];
        EXPECT_TRUE(Close(Number(results["Estimation"][j]), figures["b"][j], tolerance, stdError));
        EXPECT_TRUE(Close(Number(results["BetaStandErr"][j]), stdError, tolerance));
        EXPECT_TRUE(Close(Number(results["BetaTest"][j]), figures["stat"][j], tolerance, 1.0));
        EXPECT_NEAR(Number(results["BetaTestPValue"][j]), figures["p"][j], tolerance);
        if (!figures.contains("ci_lower"))
            continue;
        EXPECT_TRUE(
            Close(Number(results["BetaConfInterValLower"][j]), figures["ci_lower"][j], tolerance, stdError));
        EXPECT_TRUE(
            Close(Number(results["BetaConfInterValUpper"][j]), figures["ci_upper"][j], tolerance, stdError));
    }
    for (std::size_t j = figures["b"].size(); j < results["Estimation"].size(); ++j)
        EXPECT_EQ(results["Estimation"][j], nullptr);
}

void ExpectModel(const json& results, const json& figures, double tolerance)
{
    const struct
    {
        const char* key;
        const char* figure;
    } pairs[] = {{"WaldChiSquareTest", "wald"},
                 {"FTestVal", "F"},
                 {"ResHomoChiSqure", "QE"},
                 {"ResHomoDf", "QE_df"},
                 {"HresSquare", "H2"},
                 {"IresSquare", "I2"},
                 {"Tau", "tau2"},
                 {"RSquare", "R2"},
                 {"MultiDisper", "dispersion"},
                 {"WaldPValue", "wald_p"},
                 {"FPValue", "F_p"},
                 {"ResHomoPValue", "QE_p"}};
    for (const auto& [key, figure] : pairs) {
        if (figures.contains(figure)) {
            EXPECT_TRUE(Close(Number(results[key]), figures[figure], tolerance, 1.0)) << key;
        }
    }
}

/// Every option of the model, on every kind of weight.
TEST(Regression, ReproducesThePublishedData)
{
    const TemporaryFolder folder;
    const Arguments bcg = Vaccine(folder);
    const Arguments fixed = {"--model", "fixed"};
    const Arguments latitude = bcg + Arguments{"--covariate", "latitude"};
    const Arguments allocation = bcg + Arguments{"--factor", "allocation"};
    const Arguments weeks = {"regression",    TESTS_DIR "/data/teacher_expectancy.csv",
                             "--effect-size", "effect",
                             "--variance",    "variance",
                             "--covariate",   "weeks"};
    const Arguments writing = {"regression",    TESTS_DIR "/data/writing_to_learn.csv",
                               "--effect-size", "effect",
                               "--variance",    "variance",
                               "--covariate",   "length",
                               "--covariate",   "wic",
                               "--covariate",   "feedback"};
    const struct
    {
        const char* dataSet;
        const char* figures; ///< JSON pointer
        Arguments arguments;
        double tolerance;
    } cases[] = {
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude/FE_z",
         latitude + fixed + Arguments{"--variance", "v", "--normal-tests"}, closedFormTolerance},
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude/FE_t",
         latitude + fixed + Arguments{"--std-error", "se"}, closedFormTolerance},
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude/FE_multiplicative",
         latitude + fixed + Arguments{"--weight", "w", "--dispersion"}, closedFormTolerance},
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude/REML_knha",
         latitude + Arguments{"--weight", "w", "--knapp-hartung", "adjusted"}, iterativeTolerance},
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude_and_year_minus_1900/DL_z",
         latitude + Arguments{"--variance", "v", "--covariate", "years", "--tau2", "dl", "--normal-tests"},
         closedFormTolerance},
        {"bcg_vaccine", "/risk_ratio/meta_regression_allocation_factor_reference_2/EB_t",
         allocation + Arguments{"--std-error", "se", "--tau2", "eb"}, iterativeTolerance},
        {"bcg_vaccine", "/risk_ratio/meta_regression_allocation_factor_reference_2/SJ_knha",
         allocation + Arguments{"--variance", "v", "--tau2", "sj", "--knapp-hartung", "adjusted"},
         closedFormTolerance},
        {"teacher_expectancy", "/meta_regression_weeks/ML_adhoc",
         weeks + Arguments{"--tau2", "ml", "--knapp-hartung", "truncated"}, iterativeTolerance},
        {"writing_to_learn", "/meta_regression_length_wic_feedback/HE_t", writing + Arguments{"--tau2", "he"},
         closedFormTolerance},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.figures);
        const json results = ResultsOf(one.arguments);
        const json figures = LoadReference(one.dataSet)[json::json_pointer(one.figures)];
        ExpectCoefficients(results, figures, one.tolerance);
        ExpectModel(results, figures, one.tolerance);
    }
}

TEST(Regression, NamesItsParametersAndMarksTheRedundantOnes)
{
    const TemporaryFolder folder;
    const Arguments command = Vaccine(folder) + Arguments{"--variance", "v"};
    const Arguments terms = {
        "--interaction",  "latitude:allocation", "--factor", "allocation",  "--interaction",
        "latitude:years", "--covariate",         "latitude", "--covariate", "years",
        "--interaction",  "latitude:latitude"};
    const json results = ResultsOf(command + terms);
    EXPECT_THAT(results["Parameters"],
                ElementsAre("(intercept)", "latitude", "years", "allocation=alternate", "allocation=random",
                            "allocation=systematic", "allocation=alternate*latitude",
                            "allocation=random*latitude", "allocation=systematic*latitude", "latitude*years",
                            "latitude^2"));
    EXPECT_THAT(results["RedundancyInfo"],
                ElementsAre(true, true, true, true, true, false, true, true, false, true, true));

    const json noIntercept = ResultsOf(command + Arguments{"--factor", "allocation", "--no-intercept"});
    EXPECT_THAT(noIntercept["Parameters"],
                ElementsAre("allocation=alternate", "allocation=random", "allocation=systematic"));
    EXPECT_THAT(noIntercept["RedundancyInfo"], ElementsAre(true, true, true));
    EXPECT_THAT(ResultsOf(command)["Parameters"], ElementsAre("(intercept)"));
}

/// A covariate that holds the product has the same column in the design, to the last bit.
TEST(Regression, InteractionsOfCovariatesAreProducts)
{
    const TemporaryFolder folder;
    const Arguments command = Vaccine(folder) + Arguments{"--variance", "v", "--covariate", "latitude"};
    const Arguments years = {"--covariate", "years"};
    const struct
    {
        Arguments interaction;
        Arguments product;
    } cases[] = {
        {years + Arguments{"--interaction", "latitude:years"}, years + Arguments{"--covariate", "lat:years"}},
        {{"--interaction", "latitude:latitude"}, {"--covariate", "lat2"}},
    };
    for (const auto& one : cases)
        EXPECT_EQ(ResultsOf(command + one.interaction)["Estimation"],
                  ResultsOf(command + one.product)["Estimation"]);
}

/// The same model with its columns in another order.
TEST(Regression, InteractionsWithAFactorAreSlopesOfItsLevels)
{
    const TemporaryFolder folder;
    const Arguments command =
        Vaccine(folder) +
        Arguments{"--variance", "v", "--model", "fixed", "--covariate", "latitude", "--factor", "allocation"};
    const json interaction = ResultsOf(command + Arguments{"--interaction", "allocation:latitude"});
    const json slopes =
        ResultsOf(command + Arguments{"--covariate", "alternate_lat", "--covariate", "random_lat"});
    for (const auto& [cell, slope] : {std::pair(5U, 2U), std::pair(6U, 3U)})
        EXPECT_TRUE(Close(Number(interaction["Estimation"][cell]), slopes["Estimation"][slope],
                          closedFormTolerance, interaction["BetaStandErr"][cell]));
    EXPECT_EQ(interaction["ResHomoDf"], slopes["ResHomoDf"]);
}

TEST(Regression, PartsAnInteractionOfColumnsWithColons)
{
    const TemporaryFolder folder;
    const Arguments command =
        Vaccine(folder) + Arguments{"--variance", "v", "--covariate", "lat:years", "--covariate", "latitude"};
    const json results = ResultsOf(command + Arguments{"--interaction", "latitude:lat:years"});
    EXPECT_EQ(results["Parameters"][3], "latitude*lat:years");
}

TEST(Regression, LetsTheWeightExplainTheEffect)
{
    const TemporaryFolder folder;
    const json results = ResultsOf(Vaccine(folder) + Arguments{"--std-error", "se", "--covariate", "se"});
    const json egger = LoadReference("bcg_vaccine")["risk_ratio"]["bias"]["egger_REML"];
    EXPECT_TRUE(Close(Number(results["Estimation"][1]), egger["slope"], iterativeTolerance));
}

/// Record 1 has no effect, 2 no covariate, 3 no level, 4 no positive variance.
TEST(Regression, ScoresTheRecordsAndCountsThem)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write(
        "t.csv", "y,v,x,g\n1,1,1,a\nNA,1,2,b\n2,1,.,a\n2,1,1,\n3,0,2,b\n4,1,4,b\n2,2,2,a\n2,1,3,b\n");
    const Arguments command = {"regression",  data, "--effect-size", "y", "--variance", "v",
                               "--covariate", "x",  "--factor",      "g", "--model",    "fixed",
                               "--json",      "-"};
    const json report = RunProgram(command).Json();
    EXPECT_EQ(report["records"],
              json::parse(R"({"read": 8, "used": 4, "missing": 3, "invalid": 1, "dropped": 0,
                                                 "numbers": [0, 5, 6, 7]})"));
    EXPECT_EQ(report["warnings"], json::parse("[460031]"));
    const json scores = report["results"]["Score"];
    ASSERT_EQ(scores.size(), 8U);
    double leverages = 0.0;
    for (const int record : {0, 5, 6, 7}) {
        ASSERT_EQ(scores[static_cast<std::size_t>(record)].size(), 7U);
        leverages += scores[static_cast<std::size_t>(record)][6].get<double>();
    }
    EXPECT_NEAR(leverages, 3.0, 1e-13) << "the number of estimated parameters";
    EXPECT_EQ(scores[2], nullptr);
    EXPECT_EQ(scores[3], nullptr);
    for (const std::size_t unfitted : {1U, 4U}) {
        EXPECT_TRUE(scores[unfitted][0].is_number()) << "predicted all the same";
        EXPECT_THAT(std::vector<json>(scores[unfitted].begin() + 4, scores[unfitted].end()),
                    testing::Each(json(nullptr)));
    }
}

TEST(Regression, DescribesTheRunInItsJson)
{
    const Arguments arguments = {"regression",
                                 std::string(TESTS_DIR) + "/data/teacher_expectancy.csv",
                                 "--effect-size",
                                 "effect",
                                 "--std-error",
                                 "variance",
                                 "--factor",
                                 "tester",
                                 "--covariate",
                                 "weeks",
                                 "--covariate",
                                 "year",
                                 "--interaction",
                                 "weeks:tester",
                                 "--model",
                                 "fixed",
                                 "--tau2",
                                 "hs",
                                 "--knapp-hartung",
                                 "truncated",
                                 "--level",
                                 "0.9",
                                 "--no-intercept",
                                 "--dispersion",
                                 "--normal-tests",
                                 "--study",
                                 "study",
                                 "--json",
                                 "-"};
    const json report = RunProgram(arguments).Json();
    EXPECT_EQ(report["command"], arguments);
    EXPECT_EQ(report["status"], json::parse(R"({"code": 0, "kind": "ok"})"));
    EXPECT_EQ(report["settings"], json::parse(R"({
        "effect-size": "effect", "variance": null, "std-error": "variance", "weight": null, "study": "study",
        "covariate": ["weeks", "year"], "factor": ["tester"], "interaction": ["weeks:tester"],
        "no-intercept": true, "model": "fixed", "tau2": "hs", "knapp-hartung": "truncated", "level": 0.9,
        "dispersion": true, "normal-tests": true,
        "max-iterations": 100, "max-step-halving": 5, "tolerance": 1e-6})"));
    std::vector<std::string> keys = KeysOfGetters("regression/MARegOutputStats.h");
    EXPECT_GE(keys.size(), 25U);
    keys.push_back("Score");
    std::vector<std::string> written;
    for (const auto& [key, value] : report["results"].items())
        written.push_back(key);
    EXPECT_THAT(written, testing::UnorderedElementsAreArray(keys));
}

TEST(Regression, PrintsAReport)
{
    const TemporaryFolder folder;
    const Arguments command = Vaccine(folder) + Arguments{"--variance", "v", "--factor", "allocation"};
    const ProgramRun random = RunProgram(command + Arguments{"--knapp-hartung", "adjusted", "--tau2", "dl"});
    EXPECT_EQ(random.errors, "");
    EXPECT_THAT(random.output, StartsWith("Meta-regression: random-effects model (DerSimonian-Laird), "
                                          "Knapp-Hartung adjustment, 95% level\n"));
    EXPECT_THAT(random.output, HasSubstr("bcg.csv: 13 read, 13 used, 0 missing, 0 invalid, 0 dropped\n"));
    EXPECT_THAT(random.output,
                ContainsRegex("Study +Effect +Fitted \\[95% CI\\] +Residual +SE +Leverage\n1 +-0.8893 "));
    EXPECT_THAT(random.output,
                ContainsRegex("Parameter +Coefficient \\[95% CI\\] +SE +t +p\n\\(intercept\\) "));
    EXPECT_THAT(random.output, ContainsRegex("allocation=systematic +- +- +- +-\n-: aliased"));
    EXPECT_THAT(random.output, ContainsRegex(" F +df +residual df +p\n[0-9.]+ +2 +10 +0\\.[0-9]{4}\n"));
    EXPECT_THAT(random.output, ContainsRegex("Q +df +p +tau² +tau +I² % +H² +R² %\n132\\.3676 +10 "));

    const ProgramRun fixed =
        RunProgram(command + Arguments{"--model", "fixed", "--dispersion", "--normal-tests"});
    EXPECT_THAT(fixed.output, ContainsRegex("SE +z +p\n"));
    EXPECT_THAT(fixed.output, ContainsRegex("Wald chi² +df +p\n"));
    EXPECT_THAT(fixed.output, ContainsRegex("Q +df +p +I² % +H²\n"));
    EXPECT_THAT(fixed.output, HasSubstr("Multiplicative dispersion\n13.2368, by which"));
}

} // namespace
