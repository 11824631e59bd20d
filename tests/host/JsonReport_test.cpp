#include "host/RunProgram.h"

#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <regex>

using namespace MA_NAMESPACE;
using nlohmann::json;

namespace {

/// The keys of the public getters without arguments in a header of the library.
Texts KeysOfGetters(const std::string& header)
{
    std::ifstream file(TESTS_DIR "/../meta_analysis/" + header);
    std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    text.resize(std::min({text.find("protected:"), text.find("private:"), text.size()}));
    const std::regex getter(R"(\b(?:Get|(?=GeR))(\w+)\(\) const)"); // GeRegBasedTestSig lacks the t
    Texts keys;
    for (std::sregex_iterator match(text.begin(), text.end(), getter), end; match != end; ++match)
        keys.push_back((*match)[1]);
    return keys;
}

TEST(JsonReport, HasAKeyForEveryGetter)
{
    const std::string both[] = {"analysis/MAAnalysisResults.h", "analysis/MABaseModel.h"};
    const struct
    {
        Arguments command;
        Texts headers;
        Texts moreKeys;
    } cases[] = {
        {Bcg(), {both[0], both[1], "analysis/MABinModel.h"}, {}},
        {Effects("passive_smoking.csv"), {both[0], both[1], "analysis/MAContModel.h"}, {}},
        {Arguments{"proportion", DataFile("hyperdynamic_therapy.csv")} + "--events events --n n",
         {both[0], both[1], "analysis/MAOutcomeModel.h"},
         {}},
        {Regression("passive_smoking.csv") + "--covariate year",
         {"regression/MARegOutputStats.h"},
         {"Score"}},
    };
    for (const auto& one : cases) {
        Texts keys = one.moreKeys;
        for (const std::string& header : one.headers)
            keys = keys + KeysOfGetters(header);
        EXPECT_GT(keys.size(), 25U);
        const json results = ResultsOf(one.command);
        Texts written;
        for (const auto& [key, value] : results.items())
            written.push_back(key);
        EXPECT_THAT(written, testing::UnorderedElementsAreArray(keys)) << one.headers.back();
    }
}

TEST(JsonReport, WritesEveryDoubleSoThatItReadsBack)
{
    const TemporaryFolder folder;
    const std::string data =
        folder.Write("t.csv", "effect,variance\n0.30000000000000004,1e-300\n5e-324,0.1\n-0.0,1e300\n");
    const json results = ResultsOf(Effects(data));
    EXPECT_EQ(results["EffectSize"], (std::vector<double>{0.1 + 0.2, 5e-324, -0.0}));
    EXPECT_EQ(results["Variance"], (std::vector<double>{1e-300, 0.1, 1e300}));
}

TEST(JsonReport, WritesMissingAndInfiniteValues)
{
    const TemporaryFolder folder;
    const json results = ResultsOf(Effects(folder.Write("t.csv", "effect,variance\nNA,1\n")));
    EXPECT_EQ(results["EffectSize"], json::array());
    EXPECT_EQ(results["EstEffectSize"], json::array({nullptr}));
    EXPECT_EQ(results["EstStdError"], json::array({"inf"})); // of no studies
    const Arguments ratio = Effects(folder.Write("r.csv", "effect,variance\n800,1\n")) + "--outcome binary";
    EXPECT_EQ(ResultsOf(ratio)["EstExpEffectSize"], json::array({"inf"}));
}

TEST(JsonReport, IsValidForArgumentsThatAreNotUtf8)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("\xFF\x01\"\\.csv", "effect,variance\n1,1\n");
    const std::string path = JsonOf(Effects(data))["command"][1];
    EXPECT_THAT(path, testing::EndsWith("/\xEF\xBF\xBD\x01\"\\.csv"));
}

TEST(JsonReport, DescribesARun)
{
    const Arguments peto = Bcg() + "--effect peto --zero-delta 0.25";
    const json report = JsonOf(peto);
    EXPECT_EQ(report["schema"], 2);
    EXPECT_EQ(report["program"], "meta-analysis");
    EXPECT_EQ(report["command"], peto + "--json -");
    EXPECT_EQ(report["status"], json::parse(R"({"code": 0, "kind": "ok"})"));
    EXPECT_EQ(report["warnings"],
              (json{MAStatusCode::CONTRAST_COUNT_MISMATCH, MAStatusCode::BINARY_RANDOM_EFFECTS}));
    EXPECT_EQ(report["messages"].size(), 2U);
    EXPECT_EQ(report["settings"]["effect"], "peto");
    EXPECT_EQ(report["settings"]["zero-delta"], 0.25);
}

TEST(JsonReport, NamesEveryExcludedRecordWithItsLineAndReason)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write(
        "t.csv", "who,effect,variance,x\nA,1,NA,1\n\n\"B\n\",2,1,1\nA,3,-1,1\nD,4,1,\nE,5,1,2\nF,5,1,4\n");
    const json report = JsonOf(Effects(data) + "--study who");
    EXPECT_EQ(report["studies"], (json{"B\n", "D", "E", "F"}));
    EXPECT_EQ(report["records"],
              json::parse(R"({"read": 6, "used": 4, "missing": 1, "invalid": 1, "dropped": 0,
        "numbers": [1, 3, 4, 5],
        "excluded": [{"record": 0, "study": "A", "line": 2, "reason": "missing value"},
                     {"record": 2, "study": "A", "line": 6,
                      "reason": "variance, standard deviation or standard error not above 0"}],
        "excludedByReason": {"missing value": 1,
                             "variance, standard deviation or standard error not above 0": 1}})"));
    const json regression = JsonOf(Regression(data) + "--study who --covariate x");
    EXPECT_EQ(regression["records"]["excludedByReason"],
              json::parse(R"({"missing value of 'variance'": 1, "missing value of 'x'": 1,
                              "variance, standard deviation or standard error not above 0": 1})"));
    EXPECT_EQ(regression["studies"], (json{"B\n", "E", "F"}));
}

/// The order of the options does not matter. Options of the preset that have no effect are not refused.
TEST(JsonReport, OptionsWinOverThePreset)
{
    const Arguments effects = Effects("passive_smoking.csv");
    for (const char* const options : {"--preset library --prediction normal --probability-below -1.5",
                                      "--probability-below -1.5 --prediction normal --preset library"}) {
        json settings = JsonOf(effects + options)["settings"];
        EXPECT_EQ((json{settings["preset"], settings["tau2-search"], settings["tau2-interval"],
                        settings["prediction"], settings["probability-below"]}),
                  (json{"library", "scoring", "none", "normal", -1.5}));
    }
    EXPECT_EQ(RunProgram(effects + "--model fixed --preset library").exitStatus, 0);
}

TEST(JsonReport, SettingsShowWhatPresetsAndOtherWordsMean)
{
    const std::map<std::string, Texts> meanings = {
        {"--preset cochrane", {"reml", "if-heterogeneous", "q-profile", "auto", "null"}},
        {"--preset iqwig", {"eb", "truncated", "q-profile", "auto", "null"}},
        {"--preset cochrane --tau2 pm --knapp-hartung none", {"eb", "none", "q-profile", "auto", "null"}},
        {"--preset iqwig --model fixed", {"reml", "none", "q-profile", "auto", "null"}},
        {"--trim-fill run --side right --small-study-test peters", {"reml", "none", "q-profile", "2", "3"}}};
    for (const auto& [options, expected] : meanings) {
        const json settings = JsonOf(Bcg() + options)["settings"];
        Texts actual;
        for (const char* const name : {"tau2", "knapp-hartung", "tau2-interval", "side", "small-study-test"})
            actual.push_back(settings[name].is_string() ? settings[name].get<std::string>()
                                                        : settings[name].dump());
        EXPECT_EQ(actual, expected) << options;
    }
}

} // namespace
