// The results of the steps beside the pooled effect.

#include "host/RunProgram.h"

#include "meta_analysis/settings/MAStatusCode.h"

#include <fmt/format.h>

using namespace MA_NAMESPACE;
using nlohmann::json;
using testing::HasSubstr;

namespace {

/// Two studies of effect 200 and variance 2 pool to z = 200. The p-value is about 1e-8688; its logarithm is
/// that of 60-digit arithmetic.
TEST(Analysis, HasLogarithmsOfPValuesThatUnderflow)
{
    const TemporaryFolder folder;
    const Arguments two = Effects(folder.Write("t.csv", "effect,variance\n200,2\n200,2\n"));
    const json results = ResultsOf(two + Arguments{"--model", "fixed"});
    EXPECT_EQ(results["EstSig"][0], 0.0);
    EXPECT_DOUBLE_EQ(results["EstLog10Sig"][0], -8688.2887388558991567);
    EXPECT_THAT(ReportOf(two), HasSubstr("< 0.0001"));
}

/// The run chooses the side by the test of type 0.
TEST(Analysis, KeepsTheTrimmedSideWhenAnotherTestFollows)
{
    const Arguments trimFill = Binary("magnesium.csv") + "--trim-fill linear";
    for (const char* const type : {"1", "2", "3"})
        EXPECT_EQ(ResultsOf(trimFill + Arguments{"--small-study-test", type})["TRimFillSide"],
                  ResultsOf(trimFill)["TRimFillSide"]);
}

TEST(Analysis, KeepsTheMainResultsWhenTheSmallStudyTestFails)
{
    const TemporaryFolder folder;
    const std::string two = folder.Write("t.csv", "effect,variance\n1,1\n2,2\n");
    const ProgramRun run = RunProgram(Effects(two) + "--small-study-test 0");
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_THAT(run.errors,
                HasSubstr(fmt::format("meta-analysis: error {}: ", MAStatusCode::TOO_FEW_FOR_TEST)));
    EXPECT_THAT(run.output, AllOf(HasSubstr("\nPooled effect\n"), HasSubstr("The test asked for failed: ")));
}

/// --test-dispersion is for the small-study test alone.
TEST(Analysis, FitsBubblePlotsWithoutDispersion)
{
    const Arguments fixed = Bcg() + "--model fixed --bubble latitude --bubble-points 5";
    const json results = ResultsOf(fixed);
    EXPECT_EQ(results["BubbleCICurveX"][0], (std::vector<double>{13, 23.5, 34, 44.5, 55}));
    const Arguments test = fixed + "--small-study-test egger --test-dispersion";
    EXPECT_EQ(ResultsOf(test)["BubbleCICurveLower"], results["BubbleCICurveLower"]);
}

} // namespace
