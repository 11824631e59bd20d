#include "host/AnalysisResults.h"

#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

using nlohmann::json;
using testing::ContainsRegex;
using testing::HasSubstr;

namespace {

TEST(TrimAndFill, MatchesTheFigures)
{
    const struct
    {
        Arguments command;
        json figures;
        const char* model;     ///< in the figures' keys
        const char* estimator; ///< in the figures' keys
        const char* method;
        bool trimsLargest;
    } cases[] = {
        {Effects("passive_smoking.csv"), LoadReference("passive_smoking"), "FE", "Q0", "quadratic", true},
        {Effects("passive_smoking.csv"), LoadReference("passive_smoking"), "DL", "L0", "linear", true},
        {Effects("passive_smoking.csv"), LoadReference("passive_smoking"), "DL", "R0", "run", false},
        {Binary("bcg_vaccine.csv") + riskRatio, LoadReference("bcg_vaccine")["risk_ratio"], "REML", "L0",
         "linear", false},
        {Binary("bcg_vaccine.csv") + riskRatio, LoadReference("bcg_vaccine")["risk_ratio"], "FE", "R0", "run",
         false},
    };
    for (const auto& one : cases) {
        const std::string key = std::string("trimfill_") + one.model + '_' + one.estimator +
                                (one.trimsLargest ? "_left" : "_right");
        SCOPED_TRACE(key);
        const std::string model = one.model == std::string("FE") ? "fixed" : "random";
        const std::string tau2 = one.model == std::string("DL") ? "dl" : "reml";
        const json results =
            ResultsOf(one.command + Arguments{"--model", model, "--trim-fill-model", model, "--tau2", tau2,
                                              "--trim-fill-tau2", tau2, "--trim-fill", one.method, "--side",
                                              one.trimsLargest ? "1" : "2"});
        const json figures = one.figures["bias"][key];
        EXPECT_EQ(results["TRimFillSide"], one.trimsLargest ? 1 : 2);
        ExpectFigures(
            results, figures,
            {{"/TFImputedN0", "k0"}, {"/OverallTFEffectSize", "estimate"}, {"/OverallTFStdError", "se"}});
        ExpectFigures(results, figures,
                      {{"/OverallTFCILower", "ci_lower"}, {"/OverallTFCIUpper", "ci_upper"}},
                      figures["estimate"]);
        EXPECT_EQ(results["TFImputedStdError"].size(), figures["k0"]);
        EXPECT_EQ(results["FunnelX"].size(), 2U);
        EXPECT_EQ(results["FunnelX"][1], results["TFImputedEffectSize"]);
    }
}

/// The run tests with type 0 to choose the side; a later test of another type changes nothing about that.
TEST(TrimAndFill, TellsTheSideThatItTook)
{
    const Arguments trimFill = Binary("magnesium.csv") + Arguments{"--trim-fill", "linear"};
    for (const char* type : {"1", "2", "3"})
        EXPECT_EQ(ResultsOf(trimFill + Arguments{"--small-study-test", type})["TRimFillSide"],
                  ResultsOf(trimFill)["TRimFillSide"]);
    EXPECT_THAT(ReportOf(trimFill),
                ContainsRegex("Trim-and-fill\n.*\nObserved studies .*\nWith imputed studies .*\n"
                              "Studies imputed by the linear estimator, .*"
                              "side that the data suggest\\): [0-9]+\\.\n"));
    EXPECT_THAT(ReportOf(trimFill + Arguments{"--model", "fixed", "--weights", "mantel-haenszel"}),
                testing::AllOf(HasSubstr("460046: "), testing::Not(HasSubstr("With imputed studies"))));
}

TEST(SmallStudyTest, MatchesTheFigures)
{
    const struct
    {
        Arguments options;
        const char* key;
    } cases[] = {
        {{}, "egger_REML"},
        {{"--tau2", "eb"}, "egger_EB"},
        {{"--model", "fixed"}, "egger_fixed"},
        {{"--model", "fixed", "--test-dispersion"}, "egger_fixed_multiplicative"},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.key);
        const json figures = LoadReference("passive_smoking")["bias"][one.key];
        const json results =
            ResultsOf(Effects("passive_smoking.csv") + one.options + Arguments{"--small-study-test", "0"});
        EXPECT_EQ(results["RegBasedTestDf"], 35);
        ExpectFigures(
            results, figures,
            {{"/RegBasedTestCoef", "slope"}, {"/RegBasedTestStdError", "se"}, {"/RegBasedTestVal", "t"}});
        ExpectFigures(results, figures, {{"/GeRegBasedTestSig", "p"}}, 1.0);
        if (figures.contains("ci_lower"))
            ExpectFigures(results, figures,
                          {{"/RegBasedTestCILower", "ci_lower"}, {"/RegBasedTestCIUpper", "ci_upper"}},
                          figures["slope"]);
        EXPECT_EQ(results["RegrTestCoefficient"][0][1], results["RegBasedTestCoef"]);
        EXPECT_EQ(results["RegrCoefParameters"][0],
                  (std::vector<std::string>{"(intercept)", "standard error"}));
        EXPECT_EQ(results["RegrCoefRedundancyInfo"][0], (std::vector<bool>{true, true}));
    }
}

TEST(SmallStudyTest, HasFourTypesForTables)
{
    std::set<double> slopes;
    for (const int type : {0, 1, 2, 3}) {
        const json results =
            ResultsOf(Binary("magnesium.csv") + Arguments{"--small-study-test", std::to_string(type)});
        EXPECT_EQ(results["RegTesType"], type);
        EXPECT_EQ(results["RegrTestCoefficient"][0].back(), results["RegBasedTestCoef"]);
        slopes.insert(results["RegBasedTestCoef"].get<double>());
    }
    EXPECT_EQ(slopes.size(), 4U);
}

TEST(SmallStudyTest, IsExplainedWithoutAClaim)
{
    const Arguments test = {"--small-study-test", "0"};
    const std::string smoking =
        ReportOf(Effects("passive_smoking.csv") + test + Arguments{"--subgroup", "country"});
    EXPECT_THAT(
        smoking,
        HasSubstr("The slope is positive: less precise studies report larger values of d (p = 0.0425).\n"
                  "At the 95% level it differs from zero"));
    EXPECT_THAT(smoking, ContainsRegex("Small-study test .*\n.*\nChina +1.88.*\nGermany +- "));
    const std::string vaccine = ReportOf(Binary("bcg_vaccine.csv") + riskRatio + test);
    EXPECT_THAT(
        vaccine,
        HasSubstr(
            "The slope is negative: less precise studies report smaller values of log RR (p = 0.4388).\n"
            "At the 95% level it does not differ clearly from zero"));
    EXPECT_THAT(
        ReportOf(Binary("bcg_vaccine.csv") + Arguments{"--small-study-test", "3", "--test-intercept", "off"}),
        testing::AllOf(HasSubstr("smaller studies report"), HasSubstr("Without intercept")));
}

/// Beyond the run a failure is told, but takes nothing away; within it, it is no failure.
TEST(SmallStudyTest, LeavesTheMainResultsWhenItFails)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("t.csv", "y,v\n1,1\n2,2\n");
    const Arguments command = {"effects", data, "--effect-size", "y", "--variance", "v"};
    const ProgramRun run =
        RunProgram(command + Arguments{"--small-study-test", "0", "--json", folder.PathOf("out.json")});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.errors, HasSubstr("meta-analysis: error 460028: "));
    EXPECT_THAT(run.output,
                testing::AllOf(HasSubstr("\nPooled effect\n"), HasSubstr("The test asked for failed: ")));
    const json report = json::parse(folder.Read("out.json"));
    EXPECT_EQ(report["status"], json::parse(R"({"code": 460028, "kind": "error"})"));
    EXPECT_FALSE(report["results"]["EstEffectSize"][0].is_null());

    EXPECT_THAT(ReportOf(command + Arguments{"--trim-fill", "run"}), HasSubstr("It could not be computed."));
}

} // namespace
