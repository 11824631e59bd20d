// The command `regression`, run as a process.

#include "host/PublishedFigure.h"
#include "support/Data.h"

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
    const DataSet data("bcg_vaccine");
    const json ratios = LoadReference("bcg_vaccine")["tables"]["RR_only0"];
    const char* const allocations[] = {"alternate", "random", "systematic"};
    std::string csv = "y,v,se,w,latitude,years,allocation,lat:years,random_lat,alternate_lat,lat2\n";
    for (std::size_t i = 0; i < data.rows.size(); ++i) {
        const auto at = [&](const char* column) {
            return data.rows[i][static_cast<std::size_t>(data.IndexOf(column))];
        };
        const double y = ratios["yi"][i];
        const double v = ratios["vi"][i];
        const double lat = at("latitude");
        const double years = at("year") - 1900;
        const auto group = static_cast<std::size_t>(at("allocation"));
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
    const char* const stdError = "/BetaStandErr/1";
    ExpectPublished({
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude/REML_z/p/1",
         latitude + "--variance v --normal-tests", "/BetaTestPValue/1"},
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude/FE_multiplicative/se/1",
         latitude + "--model fixed --weight w --dispersion", stdError},
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude/REML_knha/se/1",
         latitude + "--weight w --knapp-hartung adjusted", stdError},
        {"bcg_vaccine", "/risk_ratio/meta_regression_latitude_and_year_minus_1900/DL_z/se/1",
         latitude + "--variance v --covariate years --tau2 dl", stdError},
        {"bcg_vaccine_regression_more", "/REML/q_profile/upper", latitude + "--variance v --covariate years",
         "/Tau2CIUpper"},
        {"bcg_vaccine_regression_more", "/robust_CR1/p/1",
         latitude + "--variance v --covariate years --cluster w --sandwich cr1", "/RobustSig/1"},
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
                              "numbers": [0, 5, 6, 7]})"));
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
}

} // namespace
