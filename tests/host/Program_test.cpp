#include "host/PublishedFigure.h"

using nlohmann::json;
using testing::HasSubstr;

namespace {

TEST(Program, ReproducesThePublishedData)
{
    const Arguments bcg = Binary("bcg_vaccine.csv");
    const Arguments blockers = Binary("beta_blockers.csv");
    const Arguments stroke = Continuous("stroke_length_of_stay.csv");
    const Arguments smoking = Effects("passive_smoking.csv");
    const char* const ratioData = "bcg_vaccine_log_risk_ratio_more";
    const Arguments ratios = Bcg() + "--effect risk-ratio";
    const char* const lower = "/EstCILower/0";
    const char* const filled = "/OverallTFEffectSize";
    ExpectPublished({
        {"bcg_vaccine", "/tables/OR_only0/pooled/REML/kh0/ci_lower", bcg, lower},
        {"bcg_vaccine", "/tables/RD_only0/pooled/HE/kh2/ci_lower",
         bcg + "--effect risk-difference --tau2 he --knapp-hartung truncated", lower},
        {"bcg_vaccine", "/tables/PETO_only0/pooled/SJ/kh0/ci_lower", bcg + "--effect peto --tau2 sj", lower},
        {"beta_blockers", "/tables/MH_OR/exp/0",
         blockers + "--model fixed --weights mantel-haenszel --pooled-zero-cells as-studies",
         "/EstExpEffectSize/0"},
        {"beta_blockers_mantel_haenszel_uncorrected", "/OR/estimate",
         blockers + "--model fixed --weights mantel-haenszel", "/EstEffectSize/0"},
        {"beta_blockers", "/tables/RR_all/yi/0", blockers + "--effect risk-ratio --zero-cells all",
         "/EffectSize/0"},
        {"beta_blockers", "/tables/OR_if0all/yi/0", blockers + "--zero-cells all-if-any", "/EffectSize/0"},
        {"stroke_length_of_stay", "/MD_equal_var/pooled/EB/kh0/ci_lower",
         stroke + "--effect mean-difference --equal-variances --tau2 eb", lower},
        {"stroke_length_of_stay", "/glass_treatment/pooled/HS/kh0/ci_lower",
         stroke + "--effect glass-delta --glass-group treatment --tau2 hs", lower},
        {"stroke_length_of_stay", "/hedges_g_adjusted/pooled/fixed/ci_lower",
         stroke + "--effect hedges-g --variance-adjustment --model fixed", lower},
        {"stroke_length_of_stay", "/cohen_d/yi/0", stroke, "/EffectSize/0"},
        {"passive_smoking", "/pooled/DL/kh1/ci_lower", smoking + "--tau2 dl --knapp-hartung adjusted", lower},
        {"passive_smoking", "/pooled/DL/kh1/ci_upper", Ratios("--tau2 dl --knapp-hartung adjusted"),
         "/EstCIUpper/0"},
        {"passive_smoking", "/pooled/ML/kh0/ci_lower", smoking + "--outcome binary --tau2 ml", lower},
        {"passive_smoking", "/bias/egger_EB/slope", smoking + "--tau2 eb --small-study-test 0",
         "/RegBasedTestCoef"},
        {"magnesium", "/log_odds_ratio/bias/trimfill_REML_R0_right/estimate",
         Binary("magnesium.csv") + "--trim-fill run --side 2", filled},
        {"passive_smoking", "/bias/trimfill_FE_Q0_left/estimate",
         smoking + "--model fixed --trim-fill quadratic --side 1 --trim-fill-model fixed", filled},
        {"passive_smoking", "/bias/trimfill_DL_L0_left/estimate",
         smoking + "--tau2 dl --trim-fill linear --side 1 --trim-fill-tau2 dl", filled},
        {ratioData, "/REML/q_profile/tau2/upper", ratios, "/Tau2CIUpper/0"},
        {ratioData, "/REML/q_profile/I2/lower", ratios, "/I2CILower/0"},
        {ratioData, "/ML/profile_likelihood/tau2/lower",
         ratios + "--tau2 ml --tau2-interval profile-likelihood", "/Tau2CILower/0"},
        {ratioData, "/DL/prediction/t_k_minus_1/lower", ratios + "--tau2 dl --prediction t-k-1",
         "/PILower/0"},
        {ratioData, "/EB/probability_above_0/normal",
         ratios + "--tau2 eb --prediction normal --probability-above 1", "/PIProbability/0"},
    });
}

TEST(Program, TakesStandardDeviationsAndErrorsForVariances)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("t.csv", "n1,m1,sd1,var1,n2,m2,sd2,var2\n"
                                                   "10,3,2,4,12,2,3,9\n20,5,4,16,22,4,1,1\n");
    const auto variances = [&](const std::string& command, const std::string& columns) {
        return ResultsOf(Arguments{command, data} + columns)["Variance"];
    };
    const std::string means = "--treatment-n n1 --treatment-mean m1 --control-n n2 --control-mean m2 ";
    EXPECT_EQ(variances("continuous", means + "--treatment-sd sd1 --control-variance var2"),
              variances("continuous", means + "--treatment-variance var1 --control-sd sd2"));
    EXPECT_EQ(variances("effects", "--effect-size m1 --std-error sd1"), json::parse("[4, 16]"));
}

TEST(Program, ShowsHelpAndVersion)
{
    for (const char* const arguments : {"-h", "--version", "rates --version", "help", "binary --help"})
        EXPECT_THAT(ReportOf(Arguments() + arguments), HasSubstr("meta-analysis"));
    EXPECT_EQ(ReportOf({"help", "rates"}), ReportOf({"rates", "-h"}));
    EXPECT_EQ(ReportOf({"help", "help"}), ReportOf({"-h"}));
}

/// Upper case, the abbreviations of other programs, and a level in percent.
TEST(Program, TakesTheWordsOfOtherPrograms)
{
    const struct
    {
        Arguments command;
        const char* words;
        const char* ours;
    } cases[] = {
        {Binary("bcg_vaccine.csv"), "--effect RR --tau2 DL --model RE --level 90 --knapp-hartung HKSJ",
         "--effect risk-ratio --tau2 dl --model random --level 0.9 --knapp-hartung adjusted"},
        {Binary("bcg_vaccine.csv"), "--effect OR --model FE --weights MH --contours Two-Sided",
         "--effect odds-ratio --model fixed --weights mantel-haenszel --contours two-sided"},
        {Continuous("stroke_length_of_stay.csv"), "--effect SMD --tau2 PM --tau2-interval QP",
         "--effect hedges-g --tau2 eb --tau2-interval q-profile"},
        {Effects("passive_smoking.csv"), "--outcome Binary --effect rr --preset IQWiG --trim-fill Run",
         "--outcome binary --effect risk-ratio --preset iqwig --trim-fill run"},
    };
    for (const auto& one : cases) {
        const json left = JsonOf(one.command + one.words);
        const json right = JsonOf(one.command + one.ours);
        EXPECT_EQ(left["results"], right["results"]) << one.words;
        EXPECT_EQ(left["settings"], right["settings"]) << one.words;
    }
    EXPECT_THAT(ReportOf(Bcg() + "--level 90"),
                HasSubstr("--level 90 is a percentage: the confidence level is 0.9."));
}

} // namespace
