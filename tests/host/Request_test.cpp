#include "host/CommandLine.h"
#include "host/Request.h"
#include "host/RunProgram.h"
#include "host/Wording.h"

#include <gtest/gtest.h>

#include <variant>

using namespace host;
using MA_NAMESPACE::MAModelSettings;

namespace {

Options OptionsOf(const std::string& line)
{
    const Arguments words = Words("meta-analysis " + line);
    std::vector<const char*> pointers;
    for (const std::string& word : words)
        pointers.push_back(word.c_str());
    return std::get<Options>(ParseCommandLine(static_cast<int>(pointers.size()), pointers.data()));
}

/// The table's columns are in the order of their names, the options in another one.
Request RequestOf(const std::string& line)
{
    return MakeRequest(OptionsOf(line), DataTable::Parse("a,b,c,d,e,f\n1,2,3,4,5,6\n", "t.csv"));
}

std::string ColumnAt(const Request& request, int position)
{
    return request.variables.GetVarAt(position).name;
}

constexpr const char* tables = "binary t.csv --treatment-events d --treatment-nonevents c "
                               "--control-events b --control-nonevents a ";
constexpr const char* means = "continuous t.csv --treatment-n f --treatment-mean e --control-n c "
                              "--control-mean b ";

TEST(Request, GivesEachColumnToItsSetting)
{
    using S = MAModelSettings;
    const std::string sdOfTreatment = means + std::string("--treatment-sd d --control-variance a");
    const std::string sdOfControl = means + std::string("--treatment-variance d --control-sd a");
    const std::string effects = "effects t.csv --effect-size c --std-error b";
    const struct
    {
        std::string line;
        int (S::*position)() const;
        const char* column; ///< null for none
    } cases[] = {
        {tables, &S::GetTreatmentSuccessVarIndex, "d"},
        {tables, &S::GetTreatmentFailureVarIndex, "c"},
        {tables, &S::GetControlSuccessVarIndex, "b"},
        {tables, &S::GetControlFailureVarIndex, "a"},
        {sdOfTreatment, &S::GetTreatmentNVarIndex, "f"},
        {sdOfTreatment, &S::GetTreatmentMeanVarIndex, "e"},
        {sdOfTreatment, &S::GetTreatmentStdErrorIndex, "d"},
        {sdOfTreatment, &S::GetControlNVarIndex, "c"},
        {sdOfTreatment, &S::GetControlMeanVarIndex, "b"},
        {sdOfTreatment, &S::GetControlVarianceIndex, "a"},
        {sdOfTreatment, &S::GetTreatMentVarianceIndex, nullptr},
        {sdOfTreatment, &S::GetControlStdErrorIndex, nullptr},
        {sdOfControl, &S::GetTreatMentVarianceIndex, "d"},
        {sdOfControl, &S::GetControlStdErrorIndex, "a"},
        {effects, &S::GetInputEffectsizeIndex, "c"},
        {effects, &S::GetInputStdErrorIndex, "b"},
        {effects, &S::GetInputVaranceVarIndex, nullptr},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(&one - cases);
        const Request request = RequestOf(one.line);
        const int position = (request.settings.*one.position)();
        EXPECT_EQ(position == -1, one.column == nullptr);
        EXPECT_EQ(ColumnAt(request, position), one.column == nullptr ? "" : one.column);
    }
}

TEST(Request, HoldsAColumnOnceHoweverOftenItIsNamed)
{
    Request request = RequestOf("effects t.csv --effect-size e --variance e --study e");
    EXPECT_EQ(request.variables.Size(), 1);
    ASSERT_TRUE(request.records.Start());
    EXPECT_EQ(request.records.Next()->Get(request.settings.GetInputVaranceVarIndex()), 5);
    EXPECT_EQ(request.studyLabels, std::vector<std::string>{"5"});
}

TEST(Request, HasTheFlagsAndNumbersOfTheCommandLine)
{
    const MAModelSettings settings =
        RequestOf(tables + std::string("--drop-double-zero --zero-delta 0.25 --max-iterations 7 "
                                       "--max-step-halving 8 --tolerance 1e-9 --null -2 --level 0.8"))
            .settings;
    EXPECT_TRUE(settings.GetDropBinZero());
    EXPECT_EQ(settings.GetZeroCountDelta(), 0.25);
    EXPECT_EQ(settings.GetMaxIter(), 7);
    EXPECT_EQ(settings.GetMaxStepHalving(), 8);
    EXPECT_EQ(settings.GetConnvergenceTol(), 1e-9);
    EXPECT_EQ(settings.GetNullHypothesis(), -2);
    EXPECT_EQ(settings.GetCILevel(), 0.8);

    for (const bool isEqual : {false, true}) {
        const std::string flag = isEqual ? "--equal-variances" : "--variance-adjustment";
        const Request request = RequestOf(means + ("--treatment-sd d --control-sd a " + flag));
        EXPECT_EQ(request.settings.GetVarEqualAssumption(), isEqual);
        EXPECT_EQ(request.settings.GetVarianceAdjustment(), !isEqual);
    }
}

TEST(Request, HasTheAnalysesOfTheCommandLine)
{
    const Request request = RequestOf(
        "effects t.csv --effect-size a --variance b --trim-fill quadratic --side 2 --trim-fill-model fixed "
        "--trim-fill-tau2 eb --trim-fill-knapp-hartung truncated --small-study-test 0 --test-intercept off "
        "--test-dispersion --funnel-y variance --funnel-points 7 --contours upper --contour-level 0.3 "
        "--contour-level 0.2 --center-bubble --bubble-points 9 --descending --contrast f --contrast a "
        "--bubble d");
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
    const Options options =
        OptionsOf("effects t.csv --effect-size y --variance y --subgroup place --cumulative year");
    Request request =
        MakeRequest(options, DataTable::Parse("y,place,year\n1,b,1990\n2,NA,\n3,a,1e3\n", "t.csv"));
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
    const std::string random = "random-effects model (restricted maximum likelihood)";
    const struct
    {
        std::string line;
        std::string model;
        const char* statistic;
        const char* null;
    } cases[] = {
        {tables + std::string("--null 2"), random, "z",
         "--null 2 is for the fixed-effect model; the null hypothesis here is log OR = 0."},
        {tables + std::string("--tau2 dl --knapp-hartung truncated"),
         "random-effects model (DerSimonian-Laird), truncated Knapp-Hartung adjustment", "t", ""},
        {tables + std::string("--model fixed --knapp-hartung adjusted --null 0.5"),
         "fixed-effect model (inverse variance)", "z", "The null hypothesis is log OR = 0.5."},
        {tables + std::string("--model fixed --weights mantel-haenszel --null 2"),
         "fixed-effect model (Mantel-Haenszel)", "z", "The null hypothesis is OR = 2."},
        {tables + std::string("--model fixed --weights mantel-haenszel --effect peto"),
         "fixed-effect model (Peto)", "z", ""},
        {tables + std::string("--weights mantel-haenszel"), random, "z", ""},
        {"effects t.csv --effect-size a --variance b --outcome binary --model fixed "
         "--weights mantel-haenszel",
         "fixed-effect model (inverse variance)", "z", ""},
    };
    for (const auto& one : cases) {
        const MAModelSettings settings = OptionsOf(one.line).settings;
        EXPECT_EQ(WordingOfModel(settings), one.model);
        EXPECT_EQ(WordingOfStatistic(settings), one.statistic);
        EXPECT_EQ(WordingOfNullHypothesis(settings), one.null);
    }
}

} // namespace
