#include "host/RunProgram.h"
#include "host/report/ConcerningWarnings.h"

#include "meta_analysis/settings/MAStatusCode.h"

#include <fstream>
#include <regex>

using namespace MA_NAMESPACE;

namespace {

TEST(ConcerningWarnings, EveryWarningOfTheLibraryIsDecidedAndNoError)
{
    std::ifstream file(TESTS_DIR "/../meta_analysis/settings/MAStatusCode.h");
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const std::size_t warnings = text.find("// Warnings.");
    ASSERT_NE(warnings, text.npos);
    const std::regex number("\\b460\\d{3}\\b");
    for (std::sregex_iterator match(text.begin(), text.end(), number), end; match != end; ++match) {
        const bool isWarning = static_cast<std::size_t>(match->position()) > warnings;
        EXPECT_EQ(host::HasConcernRule(std::stoi(match->str())), isWarning) << match->str();
    }
}

/// The JSON keeps what the report leaves out.
TEST(ConcerningWarnings, AreTheOnlyOnesOfTheReport)
{
    const TemporaryFolder folder;
    const std::string zeros =
        folder.Write("t.csv", "treatment_events,treatment_nonevents,control_events,control_nonevents\n"
                              "0,9,2,7\n3,8,3,5\n4,9,5,6\n");
    const Arguments published = Effects("passive_smoking.csv");
    for (const Arguments& quiet : {Bcg(), published, Regression("passive_smoking.csv") + "--covariate year"})
        EXPECT_THAT(ReportOf(quiet), testing::Not(testing::HasSubstr("\nWarnings\n"))) << quiet[0];
    EXPECT_THAT(ReportOf(Binary(zeros)), testing::HasSubstr("1 of 3 studies has a zero-cell correction"));
    EXPECT_THAT(JsonOf(Binary(zeros))["warnings"], testing::Contains(MAStatusCode::BINARY_RANDOM_EFFECTS));
    EXPECT_EQ(JsonOf(published)["warnings"],
              (nlohmann::json{MAStatusCode::CONTRAST_COUNT_MISMATCH, MAStatusCode::READY_MADE_EFFECTS,
                              MAStatusCode::READY_MADE_EFFECTS_AGAIN}));
}

} // namespace
