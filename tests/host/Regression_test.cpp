// The command `regression`, run as a process.

#include "host/Getters.h"
#include "host/RunProgram.h"
#include "support/Compare.h"
#include "support/Data.h"
#include "support/Reference.h"

#include <fmt/format.h>

#include <utility>

using nlohmann::json;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const Arguments toJson = Words("--json - --tolerance 1e-12 --max-iterations 10000 --max-step-halving 100");

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
        const double y = ratios["yi"][i];
        const double v = ratios["vi"][i];
        const double lat = at("latitude");
        const double years = at("year") - 1900;
        const auto group = static_cast<std::size_t>(at("allocation"));
        csv += fmt::format("{},{},{},{},{},{},{},{},{},{},{}\n", y, v, std::sqrt(v), 1 / v, lat, years,
                           allocations[group], lat * years, group == 1 ? lat : 0, group == 0 ? lat : 0,
                           lat * lat);
    }
    return folder.Write("bcg.csv", csv);
}

Arguments Vaccine(const TemporaryFolder& folder)
{
    return {"regression", VaccineData(folder), "--effect-size", "y"};
}

// The figures and the library stop below a step of 1e-12, slowly converging ones a little before the root.
constexpr double iterativeTolerance = 1e-10;

json ResultsOf(const Arguments& arguments)
{
    const ProgramRun run = RunProgram(arguments + toJson);
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    return run.Json()["results"];
}

/// One standard error of a run shows that the choices arrived; the library's own tests look at all figures.
TEST(Regression, ReproducesThePublishedData)
{
    const TemporaryFolder folder;
    const Arguments latitude = Vaccine(folder) + Words("--covariate latitude");
    const Arguments allocation = Vaccine(folder) + Words("--factor allocation");
    const Arguments weeks = {"regression", TESTS_DIR "/data/teacher_expectancy.csv"};
    const Arguments writing = {"regression", TESTS_DIR "/data/writing_to_learn.csv"};
    const Arguments effects = Words("--effect-size effect --variance variance");
    const struct
    {
        const char* dataSet;
        const char* figures; ///< JSON pointer
        Arguments arguments;
    } cases[] = {
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude/FE_z",
         latitude + Words("--model fixed --variance v --normal-tests")},
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude/FE_t",
         latitude + Words("--model fixed --std-error se")},
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude/FE_multiplicative",
         latitude + Words("--model fixed --weight w --dispersion")},
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude/REML_knha",
         latitude + Words("--weight w --knapp-hartung adjusted")},
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude_and_year_minus_1900/DL_z",
         latitude + Words("--variance v --covariate years --tau2 dl --normal-tests")},
        {"bcg_vaccine", "/risk_ratio/meta_regression_allocation_factor_reference_2/EB_t",
         allocation + Words("--std-error se --tau2 eb")},
        {"bcg_vaccine", "/risk_ratio/meta_regression_allocation_factor_reference_2/SJ_knha",
         allocation + Words("--variance v --tau2 sj --knapp-hartung adjusted")},
        {"teacher_expectancy", "/meta_regression_weeks/ML_adhoc",
         weeks + effects + Words("--covariate weeks --tau2 ml --knapp-hartung truncated")},
        {"writing_to_learn", "/meta_regression_length_wic_feedback/HE_t",
         writing + effects + Words("--covariate length --covariate wic --covariate feedback --tau2 he")},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.figures);
        const json results = ResultsOf(one.arguments);
        const json figures = LoadReference(one.dataSet).at(json::json_pointer(one.figures));
        EXPECT_TRUE(Close(Number(results["BetaStandErr"][1]), figures["se"][1], iterativeTolerance));
        EXPECT_NEAR(Number(results["BetaTestPValue"][1]), figures["p"][1], iterativeTolerance);
    }
}

TEST(Regression, NamesItsParametersAndMarksTheRedundantOnes)
{
    const TemporaryFolder folder;
    const Arguments command = Vaccine(folder) + Words("--variance v");
    const Arguments terms =
        Words("--interaction latitude:allocation --factor allocation --interaction latitude:years "
              "--covariate latitude --covariate years --interaction latitude:latitude");
    const json results = ResultsOf(command + terms);
    EXPECT_THAT(results["Parameters"],
                ElementsAre("(intercept)", "latitude", "years", "allocation=alternate", "allocation=random",
                            "allocation=systematic", "allocation=alternate*latitude",
                            "allocation=random*latitude", "allocation=systematic*latitude", "latitude*years",
                            "latitude^2"));
    EXPECT_THAT(results["RedundancyInfo"],
                ElementsAre(true, true, true, true, true, false, true, true, false, true, true));

    const json noIntercept = ResultsOf(command + Words("--factor allocation --no-intercept"));
    EXPECT_THAT(noIntercept["Parameters"],
                ElementsAre("allocation=alternate", "allocation=random", "allocation=systematic"));
    EXPECT_THAT(noIntercept["RedundancyInfo"], ElementsAre(true, true, true));
    EXPECT_THAT(ResultsOf(command)["Parameters"], ElementsAre("(intercept)"));
}

/// A covariate that holds the product has the same column in the design, to the last bit.
TEST(Regression, InteractionsOfCovariatesAreProducts)
{
    const TemporaryFolder folder;
    const Arguments command = Vaccine(folder) + Words("--variance v --covariate latitude");
    const auto estimates = [&](const char* terms) { return ResultsOf(command + Words(terms))["Estimation"]; };
    EXPECT_EQ(estimates("--covariate years --interaction latitude:years"),
              estimates("--covariate years --covariate lat:years"));
    EXPECT_EQ(estimates("--interaction latitude:latitude"), estimates("--covariate lat2"));
}

/// The same model with its columns in another order.
TEST(Regression, InteractionsWithAFactorAreSlopesOfItsLevels)
{
    const TemporaryFolder folder;
    const Arguments command =
        Vaccine(folder) + Words("--variance v --model fixed --covariate latitude --factor allocation");
    const json interaction = ResultsOf(command + Words("--interaction allocation:latitude"));
    const json slopes = ResultsOf(command + Words("--covariate alternate_lat --covariate random_lat"));
    for (const auto& [cell, slope] : {std::pair(5U, 2U), std::pair(6U, 3U)})
        EXPECT_TRUE(Close(Number(interaction["Estimation"][cell]), slopes["Estimation"][slope],
                          iterativeTolerance, interaction["BetaStandErr"][cell]));
    EXPECT_EQ(interaction["ResHomoDf"], slopes["ResHomoDf"]);
}

TEST(Regression, PartsAnInteractionOfColumnsWithColons)
{
    const TemporaryFolder folder;
    const json results = ResultsOf(
        Vaccine(folder) +
        Words("--variance v --covariate lat:years --covariate latitude --interaction latitude:lat:years"));
    EXPECT_EQ(results["Parameters"][3], "latitude*lat:years");
}

TEST(Regression, LetsTheWeightExplainTheEffect)
{
    const TemporaryFolder folder;
    const json results = ResultsOf(Vaccine(folder) + Words("--std-error se --covariate se"));
    const json egger = LoadReference("bcg_vaccine")["risk_ratio"]["bias"]["egger_REML"];
    EXPECT_TRUE(Close(Number(results["Estimation"][1]), egger["slope"], iterativeTolerance));
}

/// Record 1 has no effect, 2 no covariate, 3 no level, 4 no positive variance.
TEST(Regression, ScoresTheRecordsAndCountsThem)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write(
        "t.csv", "y,v,x,g\n1,1,1,a\nNA,1,2,b\n2,1,.,a\n2,1,1,\n3,0,2,b\n4,1,4,b\n2,2,2,a\n2,1,3,b\n");
    const Arguments command =
        Arguments{"regression", data} +
        Words("--effect-size y --variance v --covariate x --factor g --model fixed --json -");
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
    const Arguments arguments =
        Arguments{"regression", TESTS_DIR "/data/teacher_expectancy.csv"} +
        Words("--effect-size effect --std-error variance --factor tester --covariate weeks --covariate year "
              "--interaction weeks:tester --model fixed --tau2 hs --knapp-hartung truncated --level 0.9 "
              "--no-intercept --dispersion --normal-tests --study study --json -");
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
    const Arguments command = Vaccine(folder) + Words("--variance v --factor allocation");
    const ProgramRun random = RunProgram(command + Words("--knapp-hartung adjusted --tau2 dl"));
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

    const ProgramRun fixed = RunProgram(command + Words("--model fixed --dispersion --normal-tests"));
    EXPECT_THAT(fixed.output, ContainsRegex("SE +z +p\n"));
    EXPECT_THAT(fixed.output, ContainsRegex("Wald chi² +df +p\n"));
    EXPECT_THAT(fixed.output, ContainsRegex("Q +df +p +I² % +H²\n"));
    EXPECT_THAT(fixed.output, HasSubstr("Multiplicative dispersion\n13.2368, by which"));
}

} // namespace
