// The commands for rates of two groups and for the outcomes of one group.

#include "host/Pictures.h"
#include "host/cli/Commands.h"
#include "host/draw/Picture.h"
#include "host/text/Measures.h"
#include "support/Compare.h"
#include "support/Reference.h"

using namespace MA_NAMESPACE;
using nlohmann::json;
using testing::HasSubstr;

namespace {

Arguments Outcome(const std::string& command)
{
    const std::map<std::string, std::pair<const char*, const char*>> columns = {
        {"proportion", {"hyperdynamic_therapy.csv", "--events events --n n"}},
        {"rate", {"warfarin_stroke.csv", "--events control_events --time control_time"}},
        {"correlation", {"conscientiousness.csv", "--r r --n n"}},
        {"mean", {"stroke_length_of_stay.csv", "--n control_n --mean control_mean --sd control_sd"}},
        {"rates",
         {"warfarin_stroke.csv", "--treatment-events treatment_events --treatment-time treatment_time "
                                 "--control-events control_events --control-time control_time"}}};
    return Arguments{command, DataFile(columns.at(command).first)} + columns.at(command).second;
}

/// All steps of all measures run, with their sections and pictures. A raw value or difference is as it is on
/// both scales, any other measure has its natural scale in the report.
TEST(Outcomes, EveryMeasureHasReportAndPictures)
{
    for (const host::CommandRow& command : host::COMMANDS) {
        if (!command.data)
            continue;
        for (const host::OutcomeMeasure& measure : host::OutcomeMeasuresOf(*command.data)) {
            SCOPED_TRACE(testing::Message() << command.name << ' ' << measure.name);
            const std::string name(command.name);
            const Arguments arguments =
                Outcome(name) + "--leave-one-out --trim-fill linear" +
                Arguments{"--effect", std::string(measure.name), "--cumulative", Outcome(name)[3]};
            const Pictures pictures(arguments);
            const json& results = pictures.Results();
            const bool isNatural = ScaleOf(measure.value) == MAScale::Natural;
            for (const char* const key : {"CumEstES", "CumEstCiLower", "CumEstCiUpper"})
                EXPECT_EQ(results[key] == results["CumNatural" + std::string(key).substr(3)], isNatural);
            const std::string report = ReportOf(arguments);
            EXPECT_EQ(report.find(std::string("log ") + measure.symbol + " [") != std::string::npos,
                      ScaleOf(measure.value) == MAScale::Log);
            EXPECT_THAT(report, AllOf(HasSubstr(std::string(measure.symbol) + " [95% CI]"),
                                      HasSubstr("\nTrim-and-fill\n"), HasSubstr("\nLeave-one-out\n")));
        }
    }
}

/// On an axis of proportions, although the analysis is on another scale.
TEST(Outcomes, ForestsAreDrawnOnTheNaturalScale)
{
    const Pictures pictures(Outcome("proportion") + "--effect freeman-tukey");
    const SvgFigure figure = pictures.Figure("forest");
    const std::vector<SvgMark> squares = figure.Marks("gpPt4", host::color::STUDY);
    const std::vector<double> shown = pictures.Results()["NaturalEffectSize"];
    ASSERT_EQ(squares.size(), shown.size());
    const double perUnit = (squares[4].x - squares[2].x) / (shown[4] - shown[2]); // from 0.5 to 1
    for (std::size_t i = 0; i < shown.size(); ++i)
        EXPECT_NEAR(squares[i].x - squares[2].x, perUnit * (shown[i] - shown[2]), 4 * halfPixelDigit) << i;
    EXPECT_THAT(figure.Words(), testing::IsSupersetOf(Texts{"Proportion", "0.80 [0.70, 0.89]"}));
}

TEST(Outcomes, RatesArePooledAfterMantelAndHaenszel)
{
    const json expected = LoadReference("warfarin_stroke_mantel_haenszel").at("IRR");
    const Arguments pooled = Outcome("rates") + "--model fixed --weights mantel-haenszel";
    EXPECT_TRUE(Close(ResultsOf(pooled)["NaturalEstEffectSize"][0].get<double>(),
                      std::exp(expected.at("estimate").get<double>()), 1e-12));
    EXPECT_THAT(ReportOf(pooled + "--null 0.5"), HasSubstr("The null hypothesis is IRR = 0.5."));
}

/// Nothing is lost: each record is a study, or counted and listed with its reason.
TEST(Outcomes, ImpossibleRecordsAreListed)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("t.csv", "x,n\n3,10\n12,10\nNA,5\n0,8\n-1,4\n4,0\n5,5\n");
    const std::string report = ReportOf(Arguments{"proportion", data} + "--events x --n n");
    EXPECT_THAT(report, AllOf(HasSubstr("7 read, 3 used, 1 missing, 3 invalid, 0 dropped"),
                              HasSubstr("0.5 added to all counts of 2 studies."),
                              HasSubstr("\n2         3  more events than persons\n"
                                        "3         4  missing value\n"
                                        "5         6  negative count\n"
                                        "6         7  more events than persons\n")));
}

} // namespace
