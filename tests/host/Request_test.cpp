#include "host/CommandLine.h"
#include "host/Request.h"
#include "host/Wording.h"

#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

using namespace host;
using MA_NAMESPACE::MAModelSettings;

namespace {

using Words = std::vector<const char*>;

Options OptionsOf(Words words)
{
    words.insert(words.begin(), "meta-analysis");
    return std::get<Options>(ParseCommandLine(static_cast<int>(words.size()), words.data()));
}

/// The table's columns are in the order of their names, the options in another one.
Request RequestOf(const Words& words)
{
    return MakeRequest(OptionsOf(words), DataTable::Parse("a,b,c,d,e,f\n1,2,3,4,5,6\n", "t.csv"));
}

std::string ColumnAt(const Request& request, int position)
{
    return request.variables.GetVarAt(position).name;
}

TEST(Request, GivesEachColumnToItsSetting)
{
    const Request binary = RequestOf({"binary", "t.csv", "--treatment-events", "d", "--treatment-nonevents",
                                      "c", "--control-events", "b", "--control-nonevents", "a"});
    EXPECT_EQ(ColumnAt(binary, binary.settings.GetTreatmentSuccessVarIndex()), "d");
    EXPECT_EQ(ColumnAt(binary, binary.settings.GetTreatmentFailureVarIndex()), "c");
    EXPECT_EQ(ColumnAt(binary, binary.settings.GetControlSuccessVarIndex()), "b");
    EXPECT_EQ(ColumnAt(binary, binary.settings.GetControlFailureVarIndex()), "a");

    const Request mixed =
        RequestOf({"continuous", "t.csv", "--treatment-n", "f", "--treatment-mean", "e", "--treatment-sd",
                   "d", "--control-n", "c", "--control-mean", "b", "--control-variance", "a"});
    EXPECT_EQ(ColumnAt(mixed, mixed.settings.GetTreatmentNVarIndex()), "f");
    EXPECT_EQ(ColumnAt(mixed, mixed.settings.GetTreatmentMeanVarIndex()), "e");
    EXPECT_EQ(ColumnAt(mixed, mixed.settings.GetTreatmentStdErrorIndex()), "d");
    EXPECT_EQ(ColumnAt(mixed, mixed.settings.GetControlNVarIndex()), "c");
    EXPECT_EQ(ColumnAt(mixed, mixed.settings.GetControlMeanVarIndex()), "b");
    EXPECT_EQ(ColumnAt(mixed, mixed.settings.GetControlVarianceIndex()), "a");
    EXPECT_EQ(mixed.settings.GetTreatMentVarianceIndex(), -1);
    EXPECT_EQ(mixed.settings.GetControlStdErrorIndex(), -1);

    const Request other = RequestOf({"continuous", "t.csv", "--treatment-n", "f", "--treatment-mean", "e",
                                     "--treatment-variance", "d", "--control-n", "c", "--control-mean", "b",
                                     "--control-sd", "a"});
    EXPECT_EQ(ColumnAt(other, other.settings.GetTreatMentVarianceIndex()), "d");
    EXPECT_EQ(ColumnAt(other, other.settings.GetControlStdErrorIndex()), "a");

    const Request effects = RequestOf({"effects", "t.csv", "--effect-size", "c", "--std-error", "b"});
    EXPECT_EQ(ColumnAt(effects, effects.settings.GetInputEffectsizeIndex()), "c");
    EXPECT_EQ(ColumnAt(effects, effects.settings.GetInputStdErrorIndex()), "b");
    EXPECT_EQ(effects.settings.GetInputVaranceVarIndex(), -1);
}

TEST(Request, HoldsAColumnOnceHoweverOftenItIsNamed)
{
    Request request =
        RequestOf({"effects", "t.csv", "--effect-size", "e", "--variance", "e", "--study", "e"});
    EXPECT_EQ(request.variables.Size(), 1);
    ASSERT_TRUE(request.records.Start());
    EXPECT_EQ(request.records.Next()->Get(request.settings.GetInputVaranceVarIndex()), 5);
    EXPECT_EQ(request.studyLabels, std::vector<std::string>{"5"});
}

TEST(Request, HasTheFlagsAndNumbersOfTheCommandLine)
{
    const Words binary = {"binary",
                          "t.csv",
                          "--treatment-events",
                          "a",
                          "--treatment-nonevents",
                          "b",
                          "--control-events",
                          "c",
                          "--control-nonevents",
                          "d",
                          "--drop-double-zero",
                          "--zero-delta",
                          "0.25",
                          "--max-iterations",
                          "7",
                          "--max-step-halving",
                          "8",
                          "--tolerance",
                          "1e-9",
                          "--null",
                          "-2",
                          "--level",
                          "0.8"};
    const MAModelSettings settings = RequestOf(binary).settings;
    EXPECT_TRUE(settings.GetDropBinZero());
    EXPECT_EQ(settings.GetZeroCountDelta(), 0.25);
    EXPECT_EQ(settings.GetMaxIter(), 7);
    EXPECT_EQ(settings.GetMaxStepHalving(), 8);
    EXPECT_EQ(settings.GetConnvergenceTol(), 1e-9);
    EXPECT_EQ(settings.GetNullHypothesis(), -2);
    EXPECT_EQ(settings.GetCILevel(), 0.8);

    const Words continuous = {"continuous",     "t.csv", "--treatment-n", "a", "--treatment-mean", "b",
                              "--treatment-sd", "c",     "--control-n",   "d", "--control-mean",   "e",
                              "--control-sd",   "f"};
    Words adjusted = continuous;
    adjusted.push_back("--variance-adjustment");
    EXPECT_TRUE(RequestOf(adjusted).settings.GetVarianceAdjustment());
    EXPECT_FALSE(RequestOf(adjusted).settings.GetVarEqualAssumption());
    Words equal = continuous;
    equal.push_back("--equal-variances");
    EXPECT_TRUE(RequestOf(equal).settings.GetVarEqualAssumption());
    EXPECT_FALSE(RequestOf(equal).settings.GetVarianceAdjustment());
}

TEST(Request, HasTheAnalysesOfTheCommandLine)
{
    const Words words = {"effects",
                         "t.csv",
                         "--effect-size",
                         "a",
                         "--variance",
                         "b",
                         "--trim-fill",
                         "quadratic",
                         "--side",
                         "2",
                         "--trim-fill-model",
                         "fixed",
                         "--trim-fill-tau2",
                         "eb",
                         "--trim-fill-knapp-hartung",
                         "truncated",
                         "--small-study-test",
                         "0",
                         "--test-intercept",
                         "off",
                         "--test-dispersion",
                         "--funnel-y",
                         "variance",
                         "--funnel-points",
                         "7",
                         "--contours",
                         "upper",
                         "--contour-level",
                         "0.3",
                         "--contour-level",
                         "0.2",
                         "--center-bubble",
                         "--bubble-points",
                         "9",
                         "--descending",
                         "--contrast",
                         "f",
                         "--contrast",
                         "a",
                         "--bubble",
                         "d"};
    const Request request = RequestOf(words);
    const MAModelSettings& settings = request.settings;
    EXPECT_TRUE(settings.GetIsTRIMFILL());
    EXPECT_EQ(settings.GetTrimFillMethod(), MAConst::TRIM_QUADRATIC);
    EXPECT_EQ(settings.GetTrimFillSide(), MAConst::TRIM_SIDE_SMALLEST);
    EXPECT_EQ(settings.GetTFModelType(), MAConst::MODEL_FIXED);
    EXPECT_EQ(settings.GetTFEstTauType(), MAConst::TAU2_EB);
    EXPECT_EQ(settings.GetTFKnapHartAdjustType(), MAConst::KNAPP_HARTUNG_TRUNCATED);
    EXPECT_TRUE(request.runsSmallStudyTest);
    EXPECT_FALSE(settings.GetIsUseIntercept());
    EXPECT_TRUE(settings.GetMultiDisper());
    EXPECT_EQ(settings.GetFunnelYType(), MAConst::FUNNEL_VARIANCE);
    EXPECT_EQ(settings.GetFunnelNPoints(), 7);
    EXPECT_EQ(settings.GetFunnelConTourTesType(), MAConst::CONTOUR_UPPER);
    std::vector<double> levels;
    settings.GetSetFunnelConTourCutoff(levels);
    EXPECT_EQ(levels, (std::vector<double>{0.3, 0.2}));
    EXPECT_TRUE(settings.GetCenterBubblePlot());
    EXPECT_EQ(settings.GetBubbleCurveNPoints(), 9);
    EXPECT_EQ(settings.GetSortType(), MAConst::SORT_DESCENDING);
    ASSERT_EQ(settings.GetContrastCoefIndex().size(), 2U);
    EXPECT_EQ(ColumnAt(request, settings.GetContrastCoefIndex()[0]), "f");
    EXPECT_EQ(ColumnAt(request, settings.GetContrastCoefIndex()[1]), "a");
    ASSERT_EQ(request.bubbleCovariates.size(), 1U);
    EXPECT_EQ(ColumnAt(request, request.bubbleCovariates[0]), "d");
    EXPECT_EQ(settings.GetSubGroupIndex(), -1);
    EXPECT_EQ(settings.GetCummulativeIndex(), -1);
}

TEST(Request, CodesTextsAndKeepsNumbers)
{
    const Words words = {"effects",    "t.csv", "--effect-size", "y",   "--variance", "y",
                         "--subgroup", "place", "--cumulative",  "year"};
    Request request =
        MakeRequest(OptionsOf(words), DataTable::Parse("y,place,year\n1,b,1990\n2,NA,\n3,a,1e3\n", "t.csv"));
    std::vector<std::string> places;
    std::vector<std::string> years;
    ASSERT_TRUE(request.records.Start());
    while (const Record* record = request.records.Next()) {
        places.push_back(request.subgroup.LabelOf(record->Get(request.settings.GetSubGroupIndex())));
        years.push_back(request.cumulative.LabelOf(record->Get(request.settings.GetCummulativeIndex())));
    }
    EXPECT_EQ(places, (std::vector<std::string>{"b", "(missing)", "a"}));
    EXPECT_EQ(years, (std::vector<std::string>{"1990", "(missing)", "1000"}));
    EXPECT_EQ(request.subgroup.texts, (std::vector<std::string>{"a", "b"}));
}

TEST(Wording, SaysWhatTheLibraryDoesWithTheSettings)
{
    const Words tables = {
        "binary",           "t.csv", "--treatment-events",  "a", "--treatment-nonevents", "b",
        "--control-events", "c",     "--control-nonevents", "d"};
    const Words effects = {"effects",    "t.csv", "--effect-size", "a",
                           "--variance", "b",     "--outcome",     "binary"};
    const struct
    {
        const Words& command;
        Words more;
        const char* model;
        const char* statistic;
        const char* null;
    } cases[] = {
        {tables,
         {"--null", "2"},
         "random-effects model (restricted maximum likelihood)",
         "z",
         "--null 2 is for the fixed-effect model; the null hypothesis here is log OR = 0."},
        {tables,
         {"--tau2", "dl", "--knapp-hartung", "truncated"},
         "random-effects model (DerSimonian-Laird), truncated Knapp-Hartung adjustment",
         "t",
         ""},
        {tables,
         {"--model", "fixed", "--knapp-hartung", "adjusted", "--null", "0.5"},
         "fixed-effect model (inverse variance)",
         "z",
         "The null hypothesis is log OR = 0.5."},
        {tables,
         {"--model", "fixed", "--weights", "mantel-haenszel", "--null", "2"},
         "fixed-effect model (Mantel-Haenszel)",
         "z",
         "The null hypothesis is OR = 2."},
        {tables,
         {"--model", "fixed", "--weights", "mantel-haenszel", "--effect", "peto"},
         "fixed-effect model (Peto)",
         "z",
         ""},
        {tables,
         {"--weights", "mantel-haenszel"},
         "random-effects model (restricted maximum likelihood)",
         "z",
         ""},
        {effects,
         {"--model", "fixed", "--weights", "mantel-haenszel"},
         "fixed-effect model (inverse variance)",
         "z",
         ""},
    };
    for (const auto& one : cases) {
        Words words = one.command;
        words.insert(words.end(), one.more.begin(), one.more.end());
        const MAModelSettings settings = OptionsOf(words).settings;
        EXPECT_EQ(WordingOfModel(settings), one.model);
        EXPECT_EQ(WordingOfStatistic(settings), one.statistic);
        EXPECT_EQ(WordingOfNullHypothesis(settings), one.null);
    }
}

} // namespace
