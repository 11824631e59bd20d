#include "host/AnalysisResults.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstddef>
#include <fstream>
#include <string>
#include <vector>

using nlohmann::json;
using testing::ContainsRegex;
using testing::HasSubstr;

namespace {

/// A few roundings of quantities of order one.
constexpr double roundingTolerance = 1e-13;

TEST(Subgroups, MatchTheFigures)
{
    const json reference = LoadReference("bcg_vaccine")["risk_ratio"];
    const Arguments byAllocation =
        Binary("bcg_vaccine.csv") + riskRatio + Arguments{"--subgroup", "allocation"};
    for (const bool isRandom : {true, false}) {
        const json& figures =
            reference[isRandom ? "subgroup_by_allocation_REML" : "subgroup_by_allocation_fixed"];
        const json results = ResultsOf(byAllocation + Arguments{"--model", isRandom ? "random" : "fixed"});
        EXPECT_EQ(results["UniGroup"], (std::vector<double>{0, 1, 2, -1}));
        json rows = figures["groups"];
        rows.push_back(figures["overall"]);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const std::string row = std::to_string(i);
            ExpectFigures(results, rows[i],
                          {{"/EstEffectSize/" + row, "estimate"}, {"/EstStdError/" + row, "se"}});
            if (isRandom)
                ExpectFigures(results, rows[i], {{"/Tau2Var/" + row, "tau2"}});
            if (rows[i].contains("Q"))
                ExpectFigures(results, rows[i], {{"/HomoTestChisquareQ/" + row, "Q"}});
        }
        ExpectFigures(results, figures, {{"/GDQbVal", "Qb"}, {"/GDQbDf", "Qb_df"}, {"/GDQbSig", "Qb_p"}});
    }
}

/// Each group is pooled as a file with its rows alone.
TEST(Subgroups, OfTextsAreInOrderOfTheTextsAndShownByThem)
{
    const json groups = ResultsOf(Effects("passive_smoking.csv") + Arguments{"--subgroup", "country"});
    const std::vector<std::string> countries = {"China",  "Germany", "Greece", "Hong Kong", "Japan",
                                                "Russia", "Sweden",  "UK",     "USA"};
    EXPECT_EQ(groups["GroupN"], (std::vector<int>{8, 1, 2, 4, 5, 1, 1, 1, 14}));
    const TemporaryFolder folder;
    std::string rows = "study,year,country,effect,variance\n";
    std::ifstream file(TESTS_DIR "/data/passive_smoking.csv");
    for (std::string line; std::getline(file, line);)
        if (line.find("\"Hong Kong\"") != std::string::npos)
            rows += line + '\n';
    const json alone = ResultsOf(
        {"effects", folder.Write("t.csv", rows), "--effect-size", "effect", "--variance", "variance"});
    EXPECT_EQ(groups["EstEffectSize"][3], alone["EstEffectSize"][0]);

    const std::string report = ReportOf(Effects("passive_smoking.csv") + Arguments{"--subgroup", "country"});
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

/// Studies of one year come in no certain order: only the last of them is comparable.
TEST(CumulativeAnalysis, MatchesTheFigures)
{
    const json reference = LoadReference("bcg_vaccine")["risk_ratio"];
    const Arguments byYear = Binary("bcg_vaccine.csv") + riskRatio + Arguments{"--cumulative", "year"};
    for (const bool isRandom : {true, false}) {
        const json& figures = reference[isRandom ? "cumulative_by_year_REML" : "cumulative_by_year_fixed"];
        const json results = ResultsOf(byYear + Arguments{"--model", isRandom ? "random" : "fixed"});
        ASSERT_EQ(results["CumEstES"][0].size(), figures.size());
        for (std::size_t i = 0; i < figures.size(); ++i) {
            if (i + 1 < figures.size() && figures[i + 1]["key"] == figures[i]["key"])
                continue;
            const std::string step = "/0/" + std::to_string(i);
            ExpectFigures(results, figures[i],
                          {{"/EstCumulative" + step, "key"},
                           {"/CumEstES" + step, "estimate"},
                           {"/CumEstStdErr" + step, "se"},
                           {"/CumEstZval" + step, "z"}});
            ExpectFigures(results, figures[i],
                          {{"/CumEstSig" + step, "p"},
                           {"/CumEstCiLower" + step, "ci_lower"},
                           {"/CumEstCiUpper" + step, "ci_upper"}},
                          figures[i]["estimate"]);
            EXPECT_TRUE(Close(Number(results["CumExpEstES"][0][i]),
                              std::exp(Number(results["CumEstES"][0][i])), roundingTolerance));
        }
    }
}

TEST(CumulativeAnalysis, IsShownInItsOrderForEachGroup)
{
    const Arguments byYear =
        Binary("bcg_vaccine.csv") + riskRatio + Arguments{"--study", "study", "--cumulative", "year"};
    const std::string descending = ReportOf(byYear + Arguments{"--descending"});
    EXPECT_THAT(descending, ContainsRegex("Cumulative analysis\nStudy added +year +RR .*\n"
                                          "TPT Madras +1980 +1.0120 .*\nHart & Sutherland +1977 "));
    const std::string grouped = ReportOf(byYear + Arguments{"--subgroup", "allocation"});
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
    const Arguments byGenus =
        Continuous("elevated_co2.csv") + Arguments{"--cumulative", "genus", "--study", "study"};
    EXPECT_THAT(ReportOf(byGenus), ContainsRegex("Study added +genus .*\n[0-9]+ +ACER "));
    EXPECT_THAT(ReportOf(byGenus + Arguments{"--descending"}),
                ContainsRegex("Study added +genus .*\n[0-9]+ +TRICHOSPERMUM "));
}

/// A weighted sum of the studies' effects, whose variances add up.
TEST(Contrasts, AreTestedUnderTheFixedModelAlone)
{
    const Arguments contrasts =
        Binary("bcg_vaccine.csv") +
        Arguments{"--contrast", "allocation", "--contrast", "year", "--study", "study"};
    const json results = ResultsOf(contrasts + Arguments{"--model", "fixed"});
    const std::vector<double> allocation = {1, 1, 1, 1, 0, 0, 1, 1, 1, 2, 2, 2, 2};
    double estimate = 0;
    double variance = 0;
    for (std::size_t i = 0; i < allocation.size(); ++i) {
        estimate += allocation[i] * results["EffectSize"][i].get<double>();
        variance += allocation[i] * allocation[i] * results["Variance"][i].get<double>();
    }
    EXPECT_EQ(results["ContrastEstES"].size(), 2U);
    EXPECT_TRUE(Close(results["ContrastEstES"][0], estimate, roundingTolerance));
    EXPECT_TRUE(Close(results["ContrastEstStdError"][0], std::sqrt(variance), roundingTolerance));
    EXPECT_LT(results["ContrastEstCILower"][0], results["ContrastEstES"][0]);
    EXPECT_TRUE(Close(results["ContrastExpEstES"][0], std::exp(estimate), 1e-12));
    EXPECT_EQ(results["ContrastStatus"], (std::vector<int>{0, 0}));

    EXPECT_THAT(ReportOf(contrasts + Arguments{"--model", "fixed"}),
                ContainsRegex("Contrasts\n +exp\\(contrast\\) .*\nallocation .*\nyear "));
    EXPECT_THAT(ReportOf(contrasts), HasSubstr("tested under the fixed-effect model alone"));
}

TEST(Plots, HaveTheCoordinatesAskedFor)
{
    const Arguments arguments =
        Binary("bcg_vaccine.csv") + riskRatio + Arguments{"--funnel-y",      "inverse-variance",
                                                          "--funnel-points", "7",
                                                          "--contours",      "lower",
                                                          "--contour-level", "0.2",
                                                          "--contour-level", "0.3"};
    EXPECT_THAT(ReportOf(arguments), HasSubstr("\nIts picture has no contours: "));
    const json results = ResultsOf(arguments);
    EXPECT_EQ(results["FunnelX"][0], results["EffectSize"]);
    EXPECT_EQ(results["FunnelCIX"][0].size(), 7U);
    EXPECT_TRUE(
        Close(results["FunnelCIY"][0].back(), Number(results["FunnelContourY"][0]), roundingTolerance));
    EXPECT_EQ(results["FunnelContourX"][0].size(), 2U);
    EXPECT_LT(results["FunnelContourX"][0][0], results["FunnelContourX"][0][1]);
    EXPECT_EQ(results["LabbePlotW"][0], results["Weight"]);
    for (std::size_t i = 0; i < 13; ++i) {
        const double effect = results["EffectSize"][i];
        const double stdError = results["StdError"][i];
        EXPECT_TRUE(
            Close(results["FunnelY"][0][i], 1 / results["Variance"][i].get<double>(), roundingTolerance));
        EXPECT_TRUE(Close(results["GalbPlotX"][0][i], 1 / stdError, roundingTolerance));
        EXPECT_TRUE(Close(results["GalbPlotY"][0][i], effect / stdError, roundingTolerance));
        EXPECT_TRUE(
            Close(results["LabbePlotY"][0][i].get<double>() - results["LabbePlotX"][0][i].get<double>(),
                  effect, roundingTolerance, 10.0));
    }
}

TEST(Plots, OfBubblesHaveTheLineOfTheMetaRegression)
{
    const json figures = LoadReference("bcg_vaccine")["risk_ratio"]["meta_regression_latitude"]["REML_z"];
    const Arguments bubbles = Binary("bcg_vaccine.csv") + riskRatio +
                              Arguments{"--bubble", "year", "--bubble", "latitude", "--bubble-points", "5"};
    const json results = ResultsOf(bubbles);
    EXPECT_EQ(results["BubbleFlags"], (std::vector<int>{1, 1}));
    ExpectFigures({{"intercept", results["BubbleCoefs"][1][0]}, {"slope", results["BubbleCoefs"][1][1]}},
                  {{"intercept", figures["b"][0]}, {"slope", figures["b"][1]}},
                  {{"/intercept", "intercept"}, {"/slope", "slope"}});
    EXPECT_EQ(results["BubbleCICurveX"][1], (std::vector<double>{13, 23.5, 34, 44.5, 55}));
    EXPECT_LT(results["BubbleCILower"][1][0], results["BubblePredVals"][1][0]);
    EXPECT_LT(results["BubblePredVals"][1][0], results["BubbleCIUpper"][1][0]);
    EXPECT_LT(results["BubbleCICurveLower"][1][0], results["BubbleCICurveUpper"][1][0]);

    const json centred = ResultsOf(bubbles + Arguments{"--center-bubble"});
    double sum = 0;
    for (const json& x : centred["BubbleXs"][1])
        sum += x.get<double>();
    EXPECT_NEAR(sum, 0, 1e-10); // of 13 numbers up to 55
    // The dispersion is that of the small-study test alone.
    const Arguments fixed = bubbles + Arguments{"--model", "fixed"};
    EXPECT_EQ(ResultsOf(fixed + Arguments{"--test-dispersion"})["BubbleCICurveLower"],
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
    for (const auto& one : cases) {
        const ProgramRun run = RunProgram(Effects("passive_smoking.csv") + one.options);
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_EQ(run.output, "");
        EXPECT_THAT(run.errors, HasSubstr(one.message));
    }
}

} // namespace
