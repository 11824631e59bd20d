#include "host/Picture.h"
#include "host/Pictures.h"
#include "support/Compare.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

using nlohmann::json;
using testing::Contains;

namespace {

namespace color = host::color;

TEST(Drawings, NamesAFileForEachPlotOfTheLibrary)
{
    EXPECT_EQ(Pictures(Bcg()).Names(), (Texts{"forest.svg", "funnel.svg", "galbraith.svg", "labbe.svg"}));
    EXPECT_EQ(Pictures(Bcg({"--effect", "peto"})).Names(),
              (Texts{"forest.svg", "funnel.svg", "galbraith.svg"}));
    EXPECT_EQ(Pictures(Bcg({"--cumulative", "year", "--bubble", "latitude"})).Names(),
              (Texts{"bubble-1-latitude.svg", "cumulative-forest.svg", "forest.svg", "funnel.svg",
                     "galbraith.svg", "labbe.svg"}));
    EXPECT_THAT(Pictures(Bcg({"--subgroup", "allocation"})).Names(),
                testing::IsSupersetOf({"funnel.svg", "funnel-1-allocation-0.svg", "funnel-3-allocation-2.svg",
                                       "galbraith-2-allocation-1.svg", "labbe-1-allocation-0.svg"}));
}

TEST(Drawings, PutsSquaresWhereTheEffectsAreWithAreasAsTheWeights)
{
    const Pictures pictures(Bcg());
    const SvgFigure figure = pictures.Figure("forest");
    const PixelScale scale = RatioScale(figure, "0.1", "5");
    const std::vector<SvgMark> squares = figure.Marks("gpPt4", color::STUDY);
    const json& results = pictures.Results();
    const std::vector<double> effects = results["EffectSize"];
    const std::vector<double> weights = results["Weight"];
    const double largest = *std::max_element(weights.begin(), weights.end());
    ASSERT_EQ(squares.size(), effects.size());
    for (std::size_t i = 0; i < effects.size(); ++i) {
        EXPECT_NEAR(squares[i].x, scale(effects[i]), 2 * halfPixelDigit) << i;
        EXPECT_NEAR(squares[i].size, 7 * std::sqrt(weights[i] / largest), halfPixelDigit) << i;
    }
}

TEST(Drawings, WritesEffectsAndWeightsBesideTheForest)
{
    const Texts texts = TextsOf(Pictures(Bcg()).Figure("forest"));
    EXPECT_THAT(texts, testing::IsSupersetOf(Texts{"Ferguson & Simes", "0.19 [0.08, 0.46]", "6.3%",
                                                   "0.47 [0.33, 0.68]", "95% prediction interval",
                                                   "[0.12, 1.82]", "Odds ratio (log scale)"}));
}

TEST(Drawings, DrawsTheFunnelWithItsHollowImputedStudies)
{
    const Pictures pictures(Binary("magnesium.csv") +
                            Arguments{"--effect", "risk-ratio", "--trim-fill", "linear"});
    const SvgFigure figure = pictures.Figure("funnel");
    const json& results = pictures.Results();
    const std::vector<double> stdErrors = results["StdError"];
    const std::vector<SvgMark> studies = figure.Marks("gpPt6", color::POOLED);
    ASSERT_EQ(studies.size(), stdErrors.size());
    const std::size_t imputed = results["TFImputedN0"];
    ASSERT_GT(imputed, 0U);
    EXPECT_EQ(figure.Marks("gpPt6", color::WHITE).size(), imputed);

    const PixelScale x = RatioScale(figure, "0.1", "10");
    const PixelScale y = VerticalScale(figure, "0.5", "1.5");
    const std::vector<double> effects = results["EffectSize"];
    for (std::size_t i = 0; i < studies.size(); ++i) {
        EXPECT_NEAR(studies[i].x, x(effects[i]), 2 * halfPixelDigit);
        // The numbers at the axis stand lower than their ticks, all by the same.
        EXPECT_NEAR(studies[i].y - studies[0].y, y(stdErrors[i]) - y(stdErrors[0]), 4 * halfPixelDigit);
        EXPECT_EQ(studies[i].y > studies[0].y, stdErrors[i] > stdErrors[0]);
    }
}

/// Of the sides of the area that start at the null, in effects per standard error.
std::vector<double> SlopesFromTheNull(const std::vector<SvgPoint>& area, const SvgFigure& funnel)
{
    const PixelScale x = RatioScale(funnel, "0.1", "10");
    const PixelScale y = VerticalScale(funnel, "0", "1.5");
    std::vector<double> slopes;
    const auto addSide = [&](const SvgPoint& start, const SvgPoint& end) {
        if (std::abs(start.x - x(0)) < 0.1 && start.y < end.y)
            slopes.push_back((end.x - start.x) / (x(1) - x(0)) * (y(1) - y(0)) / (end.y - start.y));
    };
    for (std::size_t i = 0; i < area.size(); ++i) {
        addSide(area[i], area[(i + 1) % area.size()]);
        addSide(area[(i + 1) % area.size()], area[i]);
    }
    std::sort(slopes.begin(), slopes.end());
    return slopes;
}

TEST(Drawings, ShadesAContourForEachLevel)
{
    const double z95 = 1.6448536269514722; // normal quantiles
    const double z90 = 1.2815515655446004;
    const struct
    {
        const char* test;
        std::string wording;
        std::vector<double> slopes; ///< at level 0.1
    } cases[] = {{"two-sided", "two-sided", {-z95, z95}},
                 {"upper", "upper-tailed", {z90}},
                 {"lower", "lower-tailed", {-z90}}};
    for (const auto& one : cases) {
        SCOPED_TRACE(one.test);
        const Arguments options = {"--contours", one.test,          "--contour-level",
                                   "0.1",        "--contour-level", "0.02"};
        const SvgFigure figure = Pictures(Binary("magnesium.csv") + options).Figure("funnel");
        for (const char* range : {"p < 0.02, ", "0.02 < p < 0.1, ", "p > 0.1, "})
            EXPECT_THAT(TextsOf(figure), Contains(range + one.wording));
        const std::vector<SvgShape> areas = figure.Areas();
        ASSERT_EQ(areas.size(), 3U);
        const std::vector<SvgPoint>& frame = areas[0].points;
        for (const SvgPoint& point : areas[2].points) {
            EXPECT_TRUE(point.x >= frame[0].x && point.x <= frame[2].x) << point.x;
            EXPECT_TRUE(point.y >= frame[0].y && point.y <= frame[1].y) << point.y;
        }
        // Sides are 150 pixels long at least, and they and the scales right to half a hundredth of a pixel.
        EXPECT_THAT(SlopesFromTheNull(areas[2].points, figure),
                    testing::Pointwise(testing::DoubleNear(4e-4), one.slopes));
    }
}

TEST(Drawings, TellsAllContoursApart)
{
    Arguments levels = {"--contours", "two-sided"};
    for (const char* level : {"0.001", "0.01", "0.02", "0.05", "0.1", "0.2"})
        levels = levels + Arguments{"--contour-level", level};
    std::set<std::string> colors;
    for (const SvgShape& area : Pictures(Bcg(levels)).Figure("funnel").Areas())
        colors.insert(area.color);
    EXPECT_EQ(colors.size(), 7U);
}

TEST(Drawings, SizesBubblesByWeight)
{
    const Pictures pictures(Bcg({"--bubble", "latitude"}));
    const auto expectAreas = [](const SvgFigure& figure, std::vector<double> weights) {
        std::sort(weights.rbegin(), weights.rend());
        const std::vector<SvgMark> bubbles = figure.Marks("gpPt6", color::POOLED);
        ASSERT_EQ(bubbles.size(), weights.size());
        for (std::size_t i = 0; i < weights.size(); ++i)
            EXPECT_NEAR(bubbles[i].size, 17 * std::sqrt(weights[i] / weights[0]), halfPixelDigit) << i;
    };
    expectAreas(pictures.Figure("bubble-1-latitude"), pictures.Results()["BubbleW"][0]);
    expectAreas(pictures.Figure("labbe"), pictures.Results()["LabbePlotW"][0]);
    EXPECT_THAT(TextsOf(pictures.Figure("bubble-1-latitude")), Contains("latitude"));
    EXPECT_THAT(TextsOf(pictures.Figure("labbe")), Contains("Odds in the control group (log scale)"));
}

bool IsLeftOf(const SvgPoint& one, const SvgPoint& other)
{
    return one.x < other.x;
}

SvgPoint LeftOf(const std::vector<SvgPoint>& points)
{
    return *std::min_element(points.begin(), points.end(), IsLeftOf);
}

SvgPoint RightOf(const std::vector<SvgPoint>& points)
{
    return *std::max_element(points.begin(), points.end(), IsLeftOf);
}

TEST(Drawings, EndsIntervalsWhereTheyEndOrInAnArrow)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("data.csv", "effect,variance,group\n0.1,0.01,wide\n0.3,0.01,wide\n"
                                                      "9,0.01,alone\n"
                                                      "0.2,0.01,close\n0.25,0.02,close\n0.15,0.01,close\n");
    const Pictures pictures({"effects", data, "--effect-size", "effect", "--variance", "variance",
                             "--subgroup", "group", "--knapp-hartung", "adjusted"});
    const SvgFigure figure = pictures.Figure("forest");
    const json& results = pictures.Results();
    const PixelScale scale(0, figure.TickAt("0", &SvgText::x, "middle"), 8,
                           figure.TickAt("8", &SvgText::x, "middle"));
    const std::vector<SvgShape> areas = figure.Areas();
    ASSERT_EQ(areas.size(), 5U);
    const auto left = [&](int area) { return LeftOf(areas[area].points).x; };
    const auto right = [&](int area) { return RightOf(areas[area].points).x; };
    // Groups in the order of their names: "alone" has no limits.
    EXPECT_NEAR(left(0), scale(results["EstCILower"][1]), 2 * halfPixelDigit);
    EXPECT_NEAR(right(0), scale(results["EstCIUpper"][1]), 2 * halfPixelDigit);
    // "wide" and all studies go on at the left.
    EXPECT_EQ(left(1), left(3));
    for (const auto& [arrow, diamond, model] : {std::tuple(1, 2, 2), std::tuple(3, 4, 3)}) {
        EXPECT_EQ(areas[arrow].points.size(), 3U);
        EXPECT_NEAR(left(diamond), right(arrow), 2 * halfPixelDigit);
        EXPECT_NEAR(right(diamond), scale(results["EstCIUpper"][model]), 2 * halfPixelDigit);
        EXPECT_LT(scale(results["EstCILower"][model]), left(arrow));
    }
    EXPECT_EQ(figure.Lines(color::POOLED).size(), 3U); // the prediction interval with an arrow at both ends

    const Pictures bcg(Bcg());
    const std::vector<std::vector<SvgPoint>> prediction = bcg.Figure("forest").Lines(color::POOLED);
    const PixelScale ratios = RatioScale(bcg.Figure("forest"), "0.1", "5");
    ASSERT_EQ(prediction.size(), 1U);
    EXPECT_NEAR(prediction[0].front().x, ratios(bcg.Results()["PILower"][0]), 2 * halfPixelDigit);
    EXPECT_NEAR(prediction[0].back().x, ratios(bcg.Results()["PIUpper"][0]), 2 * halfPixelDigit);
}

TEST(Drawings, SaysWhenTheLineOfNoEffectIsBeyondTheAxis)
{
    for (const auto& [effect, isBeyond] : {std::pair("100", true), std::pair("0.1", false)}) {
        const TemporaryFolder folder;
        const std::string study = std::string(effect) + ",0.1\n";
        const std::string data = folder.Write("data.csv", "effect,variance\n" + study + study);
        const SvgFigure figure =
            Pictures({"effects", data, "--effect-size", "effect", "--variance", "variance"}).Figure("forest");
        EXPECT_EQ(figure.Lines(color::FAINT).empty(), isBeyond);
        const Texts texts = TextsOf(figure);
        EXPECT_EQ(
            std::count(texts.begin(), texts.end(), "The axis does not reach to no effect, which is at 0."),
            isBeyond ? 1 : 0);
    }
}

/// A mark for each study and each line where the library has it.
TEST(Drawings, DrawsTheLinesOfTheOtherPlots)
{
    const Pictures pictures(Bcg({"--cumulative", "year"}));
    const json& results = pictures.Results();
    EXPECT_EQ(pictures.Figure("cumulative-forest").Marks("gpPt4", color::STUDY).size(), 13U);

    const SvgFigure galbraith = pictures.Figure("galbraith");
    EXPECT_EQ(galbraith.Marks("gpPt6", color::POOLED).size(), 13U);
    const PixelScale x(0, galbraith.TickAt("0", &SvgText::x, "middle"), 15,
                       galbraith.TickAt("15", &SvgText::x, "middle"));
    const PixelScale y = VerticalScale(galbraith, "-10", "0");
    std::vector<std::vector<SvgPoint>> lines = galbraith.Lines(color::ACCENT);
    for (const std::vector<SvgPoint>& parallel : galbraith.Lines(color::INK))
        if (parallel.size() == 2 && parallel[1].x - parallel[0].x > 400)
            lines.push_back(parallel);
    std::vector<double> starts;
    for (const std::vector<SvgPoint>& line : lines) {
        const double run = (line[1].x - line[0].x) / (x(1) - x(0));
        const double rise = (line[1].y - line[0].y) / (y(1) - y(0));
        EXPECT_NEAR(rise / run, results["GalbRegrSlope"][0], 1e-3);
        starts.push_back((line[0].y - lines[0][0].y) / (y(1) - y(0)));
    }
    std::sort(starts.begin(), starts.end());
    const double offset = results["GalbRegrIntercept"][0];
    EXPECT_THAT(starts, testing::Pointwise(testing::DoubleNear(2e-3), {-offset, 0.0, offset}));

    const SvgFigure labbe = pictures.Figure("labbe");
    EXPECT_EQ(labbe.Marks("gpPt6", color::POOLED).size(), 13U);
    const std::vector<SvgPoint> equal = labbe.Lines(color::FAINT).at(0);
    const std::vector<SvgPoint> effect = labbe.Lines(color::ACCENT).at(0);
    const PixelScale odds = RatioScale(labbe, "0.01", "0.1");
    EXPECT_NEAR(equal[1].x - equal[0].x, equal[0].y - equal[1].y, 0.25); // sides are whole pixels
    EXPECT_NEAR(equal[1].y - effect[1].y, odds(results["EstEffectSize"].back()) - odds(0), 0.5);
}

} // namespace
