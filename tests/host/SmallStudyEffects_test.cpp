#include "host/RunProgram.h"

#include <set>

using nlohmann::json;
using testing::ContainsRegex;
using testing::HasSubstr;

namespace {

/// The run tests with type 0 to choose the side; a later test of another type changes nothing about that.
TEST(TrimAndFill, TellsTheSideThatItTook)
{
    const Arguments trimFill = Binary("magnesium.csv") + Words("--trim-fill linear");
    for (const char* type : {"1", "2", "3"})
        EXPECT_EQ(ResultsOf(trimFill + Arguments{"--small-study-test", type})["TRimFillSide"],
                  ResultsOf(trimFill)["TRimFillSide"]);
    EXPECT_THAT(ReportOf(trimFill),
                ContainsRegex("Trim-and-fill\n.*\nObserved studies .*\nWith imputed studies .*\n"
                              "Studies imputed by the linear estimator, .*"
                              "side that the data suggest\\): [0-9]+\\.\n"));
    EXPECT_THAT(ReportOf(trimFill + Words("--model fixed --weights mantel-haenszel")),
                testing::AllOf(HasSubstr("460046: "), testing::Not(HasSubstr("With imputed studies"))));
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
    const std::string smoking = ReportOf(Effects("passive_smoking.csv") + test + Words("--subgroup country"));
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
    EXPECT_THAT(ReportOf(Binary("bcg_vaccine.csv") + Words("--small-study-test 3 --test-intercept off")),
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

    EXPECT_THAT(ReportOf(command + Words("--trim-fill run")), HasSubstr("It could not be computed."));
}

} // namespace
