#include "host/Getters.h"
#include "host/JsonReport.h"
#include "host/Output.h"
#include "host/Request.h"
#include "host/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <regex>

using namespace host;
using nlohmann::json;

namespace {

/// An analysis of ready-made effect sizes in a table with the columns y and v.
struct EffectsAnalysis
{
    EffectsAnalysis(const std::string& csv, MAConst::OUTCOMETYPE outcome)
        : table(DataTable::Parse(csv, "t.csv"))
    {
        options.effectSize = "y";
        options.variance = "v";
        options.settings.SetOutcomesType(outcome);
    }

    json Run()
    {
        Request request = MakeRequest(options, table);
        return json::parse(RenderJson(options, table, RunAnalysis(request)));
    }

    Options options{Command::EFFECTS};
    DataTable table;
};

TEST(JsonReport, HasAKeyForEveryGetter)
{
    const struct
    {
        MAConst::OUTCOMETYPE outcome;
        const char* header;
    } drivers[] = {{MAConst::OUTCOME_BINARY, "analysis/MABinModel.h"},
                   {MAConst::OUTCOME_CONTINUOUS, "analysis/MAContModel.h"}};
    for (const auto& driver : drivers) {
        std::vector<std::string> keys = KeysOfGetters("analysis/MAAnalysisResults.h");
        EXPECT_GT(keys.size(), 35U);
        for (const char* const header : {"analysis/MABaseModel.h", driver.header})
            for (const std::string& key : KeysOfGetters(header))
                keys.push_back(key);
        std::vector<std::string> written;
        const json report = EffectsAnalysis("y,v\n1,2\n", driver.outcome).Run();
        for (const auto& [key, value] : report["results"].items())
            written.push_back(key);
        EXPECT_THAT(written, testing::UnorderedElementsAreArray(keys)) << driver.header;
    }
}

TEST(JsonReport, HasUnderAKeyWhatTheGetterOfThatNameReturns)
{
    for (const char* const source : {"Results.cpp", "RegressionResults.cpp"}) {
        std::ifstream file(std::string(TESTS_DIR "/../host/") + source);
        const std::regex entry(R"x(results\["(\w+)"\] = ToJson\(\w+\.(?:Get)?(\w+)\(\)\);)x");
        int count = 0;
        for (std::string line; std::getline(file, line);) {
            std::smatch match;
            count += std::regex_search(line, match, entry) ? 1 : 0;
            EXPECT_EQ(match[1], match[2]) << line;
        }
        EXPECT_GE(count, 24) << source;
    }
}

TEST(JsonReport, WritesEveryDoubleSoThatItReadsBack)
{
    const json report = EffectsAnalysis("y,v\n0.30000000000000004,1e-300\n5e-324,0.1\n-0.0,1e300\n",
                                        MAConst::OUTCOME_CONTINUOUS)
                            .Run();
    EXPECT_EQ(report["results"]["EffectSize"], (std::vector<double>{0.1 + 0.2, 5e-324, -0.0}));
    EXPECT_EQ(report["results"]["Variance"], (std::vector<double>{1e-300, 0.1, 1e300}));
}

TEST(JsonReport, WritesMissingAndInfiniteValues)
{
    const json results = EffectsAnalysis("y,v\nNA,1\n", MAConst::OUTCOME_CONTINUOUS).Run()["results"];
    EXPECT_EQ(results["EffectSize"], json::array());
    EXPECT_EQ(results["EstEffectSize"], json::array({nullptr}));
    EXPECT_EQ(results["EstStdError"], json::array({"inf"})); // of no studies
}

TEST(JsonReport, CountsRecordsAndNamesThoseUsedFromZero)
{
    const json records =
        EffectsAnalysis("y,v\n1,NA\n2,1\n3,-1\n4,1\n", MAConst::OUTCOME_CONTINUOUS).Run()["records"];
    EXPECT_EQ(records, json::parse(R"({"read": 4, "used": 2, "missing": 1, "invalid": 1, "dropped": 0,
                                       "numbers": [1, 3]})"));
}

TEST(JsonReport, IsValidWhateverTheBytesOfTheArguments)
{
    EffectsAnalysis effects("y,v\n1,1\n", MAConst::OUTCOME_CONTINUOUS);
    effects.options.arguments = {"effects", "\xFF\x01\"\\.csv"};
    EXPECT_EQ(effects.Run()["command"][1], "\xEF\xBF\xBD\x01\"\\.csv");
}

/// No file and no option makes the library fail, so the error is made up.
TEST(Output, TellsAnErrorOfTheLibraryAndWhatWasComputedBefore)
{
    const TemporaryFolder folder;
    EffectsAnalysis effects("y,v\n1,1\n2,1\n3,1\n", MAConst::OUTCOME_CONTINUOUS);
    effects.options.jsonPath = folder.PathOf("out.json");
    Request request = MakeRequest(effects.options, effects.table);
    Analysis analysis = RunAnalysis(request);
    analysis.status = KXStatus(460060);

    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(WriteOutput(effects.options, effects.table, request, analysis), 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "meta-analysis: error 460060: The between-study variance could not be estimated.\n");
    const json report = json::parse(folder.Read("out.json"));
    EXPECT_EQ(report["status"], json::parse(R"({"code": 460060, "kind": "error"})"));
    EXPECT_EQ(report["results"]["EffectSize"], (std::vector<double>{1, 2, 3}));
}

} // namespace
