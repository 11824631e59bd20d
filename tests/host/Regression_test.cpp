// The command `regression`, run as a process.

#include "host/Pictures.h"
#include "host/PublishedFigure.h"
#include "host/draw/Picture.h"
#include "support/Published.h"

#include "meta_analysis/settings/MAStatusCode.h"

#include <fmt/format.h>

#include <utility>

using namespace MA_NAMESPACE;
using nlohmann::json;
using testing::ContainsRegex;
using testing::ElementsAre;

namespace {

/// The log risk ratios of BCG vaccination, with the columns that the tests regress them on.
std::string VaccineData(const TemporaryFolder& folder)
{
    const char* const allocations[] = {"alternate", "random", "systematic"};
    std::string csv = "y,v,se,w,latitude,years,allocation,lat:years,random_lat,alternate_lat,lat2\n";
    for (const Row& study : StudiesWith({"latitude", "year", "allocation"})) {
        const double y = study[0], v = study[1], lat = study[2], years = study[3] - 1900;
        const auto group = static_cast<std::size_t>(study[4]);
        csv += fmt::format("{},{},{},{},{},{},{},{},{},{},{}\n", y, v, std::sqrt(v), 1 / v, lat, years,
                           allocations[group], lat * years, group == 1 ? lat : 0, group == 0 ? lat : 0,
                           lat * lat);
    }
    return folder.Write("bcg.csv", csv);
}

Arguments Vaccine(const TemporaryFolder& folder)
{
    return {"regression", VaccineData(folder), "--effect-size", "y"};
}

TEST(Regression, ReproducesThePublishedData)
{
    const TemporaryFolder folder;
    const Arguments latitude = Vaccine(folder) + "--covariate latitude";
    const Arguments allocation = Vaccine(folder) + "--factor allocation";
    const Arguments hypotheses =
        latitude + "--variance v --covariate years --hypothesis 1,43.46,66=0 --hypothesis 1,23.46,71";
    const char* const stdError = "/BetaStandErr/1";
    const char* const more = "bcg_vaccine_regression_more";
    ExpectPublished({
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude/REML_z/p/1",
         latitude + "--variance v --normal-tests", "/BetaTestPValue/1"},
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude/FE_multiplicative/se/1",
         latitude + "--model fixed --weight w --dispersion", stdError},
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude/REML_knha/se/1",
         latitude + "--weight w --knapp-hartung adjusted", stdError},
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude_and_year_minus_1900/DL_z/se/1",
         latitude + "--variance v --covariate years --tau2 dl", stdError},
        {more, "/REML/q_profile/upper", latitude + "--variance v --covariate years", "/Tau2CIUpper"},
        {more, "/hypotheses/p/1", hypotheses + "--normal-tests", "/HypothesisSig/1"},
        {more, "/hypotheses/QM_p", hypotheses + "--normal-tests", "/HypothesisJointSig"},
        {more, "/hypotheses_knapp_hartung/F", hypotheses + "--knapp-hartung adjusted", "/HypothesisJointVal"},
        {more, "/robust_CR1/p/1", latitude + "--variance v --covariate years --cluster w --sandwich cr1",
         "/RobustSig/1"},
        {"bcg_vaccine", "/risk_ratio/meta_regression_allocation_factor_reference_2/EB_t/se/1",
         allocation + "--std-error se --tau2 eb", stdError},
    });
}

TEST(Regression, NamesItsParametersAndMarksTheRedundantOnes)
{
    const TemporaryFolder folder;
    const Arguments command = Vaccine(folder) + "--variance v";
    const json results = ResultsOf(
        command + "--interaction latitude:allocation --factor allocation --interaction latitude:years "
                  "--covariate latitude --covariate years --interaction latitude:latitude");
    EXPECT_THAT(results["Parameters"],
                ElementsAre("(intercept)", "latitude", "years", "allocation=alternate", "allocation=random",
                            "allocation=systematic", "allocation=alternate*latitude",
                            "allocation=random*latitude", "allocation=systematic*latitude", "latitude*years",
                            "latitude^2"));
    EXPECT_THAT(results["RedundancyInfo"],
                ElementsAre(true, true, true, true, true, false, true, true, false, true, true));

    const auto parametersOf = [&](const char* terms) { return ResultsOf(command + terms)["Parameters"]; };
    EXPECT_THAT(parametersOf("--factor allocation --no-intercept"),
                ElementsAre("allocation=alternate", "allocation=random", "allocation=systematic"));
    EXPECT_THAT(parametersOf(""), ElementsAre("(intercept)"));
    EXPECT_EQ(parametersOf("--covariate lat:years --covariate latitude --interaction latitude:lat:years")[3],
              "latitude*lat:years");
}

/// Interactions of covariates have the same design to the last bit as products in the data. Those with a
/// factor have the same columns in another order.
TEST(Regression, InteractionsAreProductsOfColumns)
{
    const TemporaryFolder folder;
    const Arguments command = Vaccine(folder) + "--variance v --model fixed --covariate latitude";
    const auto estimates = [&](const char* terms) { return ResultsOf(command + terms)["Estimation"]; };
    EXPECT_EQ(estimates("--covariate years --interaction latitude:years"),
              estimates("--covariate years --covariate lat:years"));
    EXPECT_EQ(estimates("--interaction latitude:latitude"), estimates("--covariate lat2"));

    const json cells = estimates("--factor allocation --interaction allocation:latitude");
    const json slopes = estimates("--factor allocation --covariate alternate_lat --covariate random_lat");
    for (const auto& [cell, slope] : {std::pair(5U, 2U), std::pair(6U, 3U)})
        EXPECT_TRUE(Close(Number(cells[cell]), slopes[slope], 1e-10)); // rounding, grown by the design
}

TEST(Regression, ReportsRobustAndPermutationTests)
{
    const TemporaryFolder folder;
    const Arguments command =
        Vaccine(folder) + "--variance v --covariate latitude --cluster allocation --permutations 99 --seed 3";
    EXPECT_THAT(RunProgram(command).output,
                testing::AllOf(testing::HasSubstr("3 clusters; CR2"),
                               testing::HasSubstr("99 random permutations (seed 3), each with its own"),
                               testing::HasSubstr("fewer than 4 degrees of freedom")));
    const json results = ResultsOf(command + "--model fixed");
    EXPECT_EQ(results["RobustClusters"], 3) << "clusters are texts here";
    EXPECT_EQ(results["PermutationSig"][1], results["PermutationModelSig"]) << "one covariate";
}

/// Record 1 has no effect, 2 no covariate, 3 no level, 4 no positive variance.
TEST(Regression, ScoresAndCountsTheRecords)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("t.csv", "effect,variance,x,g\n1,1,1,a\nNA,1,2,b\n2,1,.,a\n2,1,1,\n"
                                                   "3,0,2,b\n4,1,4,b\n2,2,2,a\n2,1,3,b\n");
    const json report = JsonOf(Regression(data) + "--covariate x --factor g --model fixed");
    EXPECT_EQ(report["records"],
              json::parse(R"({"read": 8, "used": 4, "missing": 3, "invalid": 1, "dropped": 0,
        "numbers": [0, 5, 6, 7], "excluded": [
            {"record": 1, "study": "2", "line": 3, "reason": "missing value of 'effect'"},
            {"record": 2, "study": "3", "line": 4, "reason": "missing value of 'x'"},
            {"record": 3, "study": "4", "line": 5, "reason": "missing value of 'g'"},
            {"record": 4, "study": "5", "line": 6,
             "reason": "variance, standard deviation or standard error not above 0"}],
        "excludedByReason": {"missing value of 'effect'": 1, "missing value of 'g'": 1,
            "missing value of 'x'": 1, "variance, standard deviation or standard error not above 0": 1}})"));
    EXPECT_EQ(report["warnings"], json::array({MAStatusCode::UNUSABLE_RECORD}));
    const json scores = report["results"]["Score"];
    ASSERT_EQ(scores.size(), 8U);
    double leverages = 0.0;
    for (const std::size_t record : {0U, 5U, 6U, 7U}) {
        ASSERT_EQ(scores[record].size(), 7U);
        leverages += scores[record][6].get<double>();
    }
    EXPECT_NEAR(leverages, 3.0, 1e-13) << "the number of estimated parameters";
    EXPECT_EQ(scores[2], nullptr);
    EXPECT_EQ(scores[3], nullptr);
    for (const std::size_t unfitted : {1U, 4U}) {
        EXPECT_TRUE(scores[unfitted][0].is_number()) << "predicted all the same";
        EXPECT_THAT(std::vector<json>(scores[unfitted].begin() + 4, scores[unfitted].end()),
                    testing::Each(json(nullptr)));
    }
}

TEST(Regression, WritesTheErrorInPlaceOfTheReport)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("t.csv", "effect,variance,n\n1,1,NA\n2,1,NA\n");
    const ProgramRun run = RunProgram(Regression(data) + "--covariate n --json" + folder.PathOf("out.json"));
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_THAT(run.errors, ContainsRegex(fmt::format("^meta-analysis: error {}: [A-Z].*\\.\n$",
                                                      MAStatusCode::NO_USABLE_STUDY)));
    const json report = json::parse(folder.Read("out.json"));
    EXPECT_EQ(report["status"], (json{{"code", MAStatusCode::NO_USABLE_STUDY}, {"kind", "error"}}));
    EXPECT_EQ(report["records"]["used"], 0);
    EXPECT_THAT(RunProgram(Vaccine(folder) + "--variance v --covariate latitude --hypothesis 1").errors,
                testing::EndsWith("The parameters are (intercept), latitude.\n"));
}

const char* const tables = "--treatment-events treatment_events --treatment-nonevents treatment_nonevents "
                           "--control-events control_events --control-nonevents control_nonevents ";

/// Ready-made log risk ratios, and the tables that they come from.
TEST(Regression, TakesRawDataOfOtherCommands)
{
    const TemporaryFolder folder;
    const Arguments ready = Vaccine(folder) + "--variance v --covariate latitude";
    const Arguments raw = Arguments{"regression", DataFile("bcg_vaccine.csv")} + tables +
                          "--effect risk-ratio --covariate latitude";
    const json expected = ResultsOf(ready);
    const json actual = ResultsOf(raw);
    for (const char* key : {"Estimation", "BetaStandErr", "VarianceInflation"})
        for (std::size_t i = 0; i < 2; ++i)
            EXPECT_TRUE(Close(Number(actual[key][i]), Number(expected[key][i]), 1e-10)) << key;
    EXPECT_THAT(ReportOf(raw), testing::AllOf(testing::HasSubstr("of the log risk ratio"),
                                              testing::HasSubstr("exp(Coefficient) [95% CI]")));
    const json means = JsonOf(Arguments{"regression", DataFile("stroke_length_of_stay.csv")} +
                              "--treatment-n treatment_n --treatment-mean treatment_mean --treatment-sd "
                              "treatment_sd --control-n control_n --control-mean control_mean --control-sd "
                              "control_sd --covariate control_n --effect glass-delta");
    EXPECT_EQ(means["settings"]["effect"], "glass-delta");
    EXPECT_EQ(means["settings"].count("treatment-events"), 0U);
    EXPECT_EQ(means["records"]["used"], 9);
}

/// The ratios and limits as published, and the log odds ratios and variances that were computed from them.
TEST(Regression, TakesConfidenceIntervalsOfRatios)
{
    const Arguments raw = Arguments{"regression", DataFile("passive_smoking_ratios.csv")} +
                          "--study study --effect-size or --ci-lower or_lower --ci-upper or_upper --ratio "
                          "--covariate year";
    const json expected = ResultsOf(Arguments{"regression", DataFile("passive_smoking.csv")} +
                                    "--effect-size effect --variance variance --covariate year");
    const json actual = ResultsOf(raw);
    for (const char* key : {"Estimation", "BetaStandErr"})
        for (std::size_t i = 0; i < 2; ++i)
            EXPECT_TRUE(Close(Number(actual[key][i]), Number(expected[key][i]), 1e-9)) << key;
    EXPECT_THAT(ReportOf(raw), testing::AllOf(testing::HasSubstr("confidence interval"),
                                              testing::HasSubstr("Studies: Cardenas, Wu.")));
}

/// Record 1 lacks a count, 2 has a negative one, 3 no event at all, 4 no covariate, 6 an empty level.
TEST(Regression, CountsTheRecordsOfRawData)
{
    const TemporaryFolder folder;
    const std::string data =
        folder.Write("t.csv", "a,b,c,d,x,g\n1,9,2,8,1,p\n,9,2,8,1,p\n1,-9,2,8,1,q\n0,9,0,8,1,q"
                              "\n1,9,2,8,NA,p\n3,7,2,8,3,q\n2,9,2,8,4,\n4,9,2,8,5,q\n");
    const json report =
        JsonOf(Arguments{"regression", data} +
               "--treatment-events a --treatment-nonevents b --control-events c "
               "--control-nonevents d --drop-double-zero --covariate x --factor g --model fixed");
    json records = report["records"];
    records.erase("excluded");
    EXPECT_EQ(records, json::parse(R"({"read": 8, "used": 3, "missing": 3, "invalid": 1, "dropped": 1,
        "numbers": [0, 5, 7], "excludedByReason": {"missing value": 1, "negative count": 1,
            "no events, or no non-events, in both groups": 1, "missing value of 'x'": 1,
            "missing value of 'g'": 1}})"));
}

/// Names and levels may hold commas and equals signs; numbers are levels however they are written.
TEST(Regression, PredictsAtNamedValues)
{
    const TemporaryFolder folder;
    const std::string data =
        folder.Write("t.csv", "y,v,\"a,b\",a,g\n1,1,1,2.0,\"p,q\"\n2,1,2,3,s=t\n4,1,4,3,\"p,q\"\n"
                              "2,1,1,2,s=t\n7,2,9,3,s=t\n6,1,8,2,s=t\n");
    const Arguments command =
        Arguments{"regression", data} + "--effect-size y --variance v --covariate a,b --factor a --factor g";
    const json results = ResultsOf(command + Arguments{"--predict", "g=s=t,a,b=9,a=3.0", "--predict",
                                                       " a = 2, g=p,q, a,b = 1", "--reference", "g=p,q"});
    EXPECT_EQ(results["Parameters"].back(), "g=p,q");
    for (const auto& [record, prediction] : {std::pair(4U, 0U), std::pair(0U, 1U)}) {
        EXPECT_EQ(results["PredictedEffect"][prediction], results["Score"][record][0]);
        EXPECT_TRUE(
            Close(Number(results["PredictedCIUpper"][prediction]), results["Score"][record][3], 1e-12));
    }
}

TEST(Regression, DrawsStudiesAndABubblePlotOfEachCovariate)
{
    const Pictures pictures(Arguments{"regression", DataFile("bcg_vaccine.csv")} + tables +
                            "--effect risk-ratio --covariate latitude --covariate year");
    EXPECT_THAT(pictures.Names(),
                testing::UnorderedElementsAre("bubble-1-latitude.svg", "bubble-2-year.svg", "forest.svg",
                                              "residual-funnel.svg", "residual-galbraith.svg"));
    EXPECT_EQ(pictures.Figure("forest").Marks("gpPt4", host::color::STUDY).size(), 13U);
    const SvgFigure figure = pictures.Figure("bubble-1-latitude");
    EXPECT_EQ(figure.Marks("gpPt6", host::color::POOLED).size(), 13U);
    const SvgPoints line = figure.Lines(host::color::ACCENT).at(0);
    const PixelScale x = LevelScale(figure, "20", "50");
    const PixelScale y = ScaleThrough(std::log(0.2), figure.TickY("0.2"), 0.0, figure.TickY("1"));
    const double slope = pictures.Results()["Estimation"][1];
    const double rise = (line.back().y - line.front().y) / (y(1) - y(0));
    EXPECT_NEAR(rise / ((line.back().x - line.front().x) / (x(1) - x(0))), slope, 1e-4);

    const SvgFigure funnel = pictures.Figure("residual-funnel");
    const std::vector<SvgMark> residuals = funnel.Marks("gpPt6", host::color::POOLED);
    const PixelScale across = LevelScale(funnel, "0.0", "1.0");
    const PixelScale down = UprightScale(funnel, "0.2", "0.6");
    ASSERT_EQ(residuals.size(), 13U);
    for (std::size_t i = 0; i < residuals.size(); ++i) {
        const json& score = pictures.Results()["Score"][i];
        EXPECT_NEAR(residuals[i].x, across(score[4]), 2 * halfPixelDigit);
        EXPECT_NEAR(residuals[i].y - residuals[0].y, down(score[5]) - down(pictures.Results()["Score"][0][5]),
                    4 * halfPixelDigit);
    }
}

} // namespace
