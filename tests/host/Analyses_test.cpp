#include "host/RunProgram.h"
#include "support/Compare.h"
#include "support/Reference.h"

using nlohmann::json;
using testing::ContainsRegex;
using testing::HasSubstr;

namespace {

TEST(Subgroups, OfTextsAreInOrderOfTheTextsAndShownByThem)
{
    const json groups = ResultsOf(Effects("passive_smoking.csv") + Words("--subgroup country"));
    const std::vector<std::string> countries = {"China",  "Germany", "Greece", "Hong Kong", "Japan",
                                                "Russia", "Sweden",  "UK",     "USA"};
    EXPECT_EQ(groups["GroupN"], (std::vector<int>{8, 1, 2, 4, 5, 1, 1, 1, 14}));
    const std::string report = ReportOf(Effects("passive_smoking.csv") + Words("--subgroup country"));
    std::string pattern = "Pooled effect\n.*\n";
    for (const std::string& country : countries)
        pattern += country + " .*\n";
    EXPECT_THAT(report, ContainsRegex(pattern + "Overall .*\n"));
    EXPECT_THAT(report, ContainsRegex("Heterogeneity between the groups\n +Q +df +p\n9.97[0-9]+ +8 +0.26"));
}

TEST(Subgroups, OfMissingValuesAreAGroup)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("t.csv", "y,v,g\n1,1,b\n2,1,NA\n3,1,a\n4,1,\n");
    const std::string report =
        ReportOf({"effects", data, "--effect-size", "y", "--variance", "v", "--subgroup", "g"});
    EXPECT_THAT(report, ContainsRegex("\n\\(missing\\) +3.0000 .*\na +3.0000 .*\nb +1.0000 .*\nOverall "));
    EXPECT_THAT(report, ContainsRegex("\n2 +\\(missing\\) +2.0000"));
}

TEST(CumulativeAnalysis, IsShownInItsOrderForEachGroup)
{
    const Arguments byYear = Binary("bcg_vaccine.csv") + riskRatio + Words("--study study --cumulative year");
    const std::string descending = ReportOf(byYear + Words("--descending"));
    EXPECT_THAT(descending, ContainsRegex("Cumulative analysis\nStudy added +year +RR .*\n"
                                          "TPT Madras +1980 +1.0120 .*\nHart & Sutherland +1977 "));
    const std::string grouped = ReportOf(byYear + Words("--subgroup allocation"));
    EXPECT_THAT(grouped, ContainsRegex("Cumulative analysis: allocation = 0\n.*\nStein & Aronson +1953 .*\n"
                                       "Frimodt-Moller et al +1973 +0.5823 "));
    // Each group's last step, and its heterogeneity.
    EXPECT_THAT(
        grouped,
        ContainsRegex("Pooled effect\n.*\n0 +0.5823 .*\n1 +0.3787 .*\n2 +0.6543 .*\nOverall +0.4894 "));
    EXPECT_THAT(grouped, ContainsRegex(
                             "Heterogeneity\n.*\n0 +5.5625 .*\n1 +110.2133 .*\n2 +16.59.*\nOverall +152.23"));
}

TEST(CumulativeAnalysis, OfTextsIsInTheirOrder)
{
    const Arguments byGenus = Continuous("elevated_co2.csv") + Words("--cumulative genus --study study");
    EXPECT_THAT(ReportOf(byGenus), ContainsRegex("Study added +genus .*\n[0-9]+ +ACER "));
    EXPECT_THAT(ReportOf(byGenus + Words("--descending")),
                ContainsRegex("Study added +genus .*\n[0-9]+ +TRICHOSPERMUM "));
}

TEST(Contrasts, AreTestedUnderTheFixedModelAlone)
{
    const Arguments contrasts = Binary("bcg_vaccine.csv") + Words("--contrast allocation --contrast year");
    EXPECT_THAT(ReportOf(contrasts + Words("--model fixed")),
                ContainsRegex("Contrasts\n +exp\\(contrast\\) .*\nallocation .*\nyear "));
    EXPECT_THAT(ReportOf(contrasts), HasSubstr("tested under the fixed-effect model alone"));
}

TEST(Plots, OfAnotherVerticalAxisHaveNoContours)
{
    EXPECT_THAT(ReportOf(Binary("bcg_vaccine.csv") + Words("--funnel-y inverse-variance --contours lower")),
                HasSubstr("\nIts picture has no contours: "));
}

TEST(Plots, OfBubblesHaveTheLineOfTheMetaRegression)
{
    const json figures = LoadReference("bcg_vaccine")["risk_ratio"]["meta_regression_latitude"]["REML_z"];
    const Arguments bubbles =
        Binary("bcg_vaccine.csv") + riskRatio + Words("--bubble year --bubble latitude --bubble-points 5");
    const json results = ResultsOf(bubbles);
    EXPECT_EQ(results["BubbleFlags"], (std::vector<int>{1, 1}));
    // Either iteration stops at a step of 1e-12, a millionth of tau² off the root at most.
    EXPECT_TRUE(Close(results["BubbleCoefs"][1].get<std::vector<double>>(),
                      figures["b"].get<std::vector<double>>(), 2e-6));
    EXPECT_EQ(results["BubbleCICurveX"][1], (std::vector<double>{13, 23.5, 34, 44.5, 55}));
    // The dispersion is that of the small-study test alone.
    const Arguments fixed = bubbles + Words("--model fixed");
    EXPECT_EQ(ResultsOf(fixed + Words("--test-dispersion"))["BubbleCICurveLower"],
              ResultsOf(fixed)["BubbleCICurveLower"]);
    EXPECT_THAT(ReportOf(bubbles),
                ContainsRegex("Bubble plots\n.*\nyear +13 .*\nlatitude +13 +0.2515 +-0.0291\n"));
}

TEST(Analyses, RefuseWhatTheyCannotUse)
{
    const struct
    {
        Arguments options;
        const char* message;
    } cases[] = {
        {{"--subgroup", "nation"}, "has no column 'nation'"},
        {{"--subgroup", "year", "--subgroup", "year"}, "--subgroup is given 2 times"},
        {{"--contrast", "country"}, "line 2, column 'country': 'USA' is not a number"},
        {{"--bubble", "country", "--subgroup", "country"}, "column 'country': 'USA' is not a number"},
        {{"--bubble", "year", "--bubble", "year"}, "--bubble: column 'year' is given twice"},
        {{"--bubble-points", "-1"}, "--bubble-points: -1 is not 0 or above"},
        {{"--funnel-points", "1"}, "--funnel-points: 1 is not 2 or above"},
        {{"--contour-level", "0.1", "--contour-level", "1"}, "--contour-level: 1 is not between 0 and 1"},
        {{"--contour-level", "0.1", "--contours", "upper", "--contour-level", "0.10"},
         "--contour-level: '0.1' is given twice"},
        {{"--contour-level", "0.1"}, "--contour-level needs --contours"},
        {{"--trim-fill", "cubic"}, "--trim-fill: 'cubic' is none of linear, run, quadratic"},
        {{"--side", "left"}, "--side: 'left' is none of auto, 1, 2"},
        {{"--small-study-test", "4"}, "--small-study-test: '4' is none of 0, 1, 2, 3"},
        {{"--small-study-test", "3", "--outcome", "binary"}, "type 3 needs the tables of the command binary"},
        {{"--test-intercept", "no"}, "--test-intercept: 'no' is none of on, off"},
    };
    for (const auto& one : cases)
        ExpectRefused(Effects("passive_smoking.csv") + one.options, one.message);
}

} // namespace
