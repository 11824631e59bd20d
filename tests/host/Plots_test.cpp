#include "host/Pictures.h"
#include "host/draw/Picture.h"
#include "support/Compare.h"

#include <tuple>
#include <utility>

using nlohmann::json;
using testing::Contains;
using testing::IsSupersetOf;

namespace {

namespace color = host::color;

using Numbers = std::vector<double>;

/// The area of a square is proportional to the weight.
TEST(Plots, DrawsTheForestAtTheEffects)
{
    const Pictures pictures(Bcg());
    const SvgFigure figure = pictures.Figure("forest");
    const json& results = pictures.Results();
    const PixelScale scale = RatioScale(figure, "0.1", "5");
    const std::vector<SvgMark> squares = figure.Marks("gpPt4", color::STUDY);
    const Numbers effects = results["EffectSize"];
    const Numbers weights = results["Weight"];
    const double largest = *std::max_element(weights.begin(), weights.end());
    ASSERT_EQ(squares.size(), effects.size());
    for (std::size_t i = 0; i < effects.size(); ++i) {
        EXPECT_NEAR(squares[i].x, scale(effects[i]), 2 * halfPixelDigit) << i;
        EXPECT_NEAR(squares[i].size, 7 * std::sqrt(weights[i] / largest), halfPixelDigit) << i;
    }
    const std::vector<SvgPoints> prediction = figure.Lines(color::POOLED);
    ASSERT_EQ(prediction.size(), 1U);
    EXPECT_NEAR(prediction[0].front().x, scale(results["PILower"][0]), 2 * halfPixelDigit);
    EXPECT_NEAR(prediction[0].back().x, scale(results["PIUpper"][0]), 2 * halfPixelDigit);
    EXPECT_THAT(figure.Words(),
                IsSupersetOf(Texts{"Ferguson & Simes", "0.19 [0.08, 0.46]", "6.3%", "0.47 [0.33, 0.68]",
                                   "95% prediction interval", "[0.12, 1.82]", "Odds ratio (log scale)"}));
}

TEST(Plots, GroupsOfOneStudyHaveNoPicture)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("t.csv", "effect,variance,group\n1,1,a\n2,3,a\n3,2,b\n");
    EXPECT_EQ(Pictures(Effects(data) + "--subgroup group").Names(),
              (Texts{"forest.svg", "funnel-1-group-a.svg", "funnel.svg", "galbraith-1-group-a.svg",
                     "galbraith.svg"}));
}

TEST(Plots, DrawsTheFunnelWithItsHollowImputedStudiesAndTheLimit)
{
    const Pictures pictures(Binary("magnesium.csv") +
                            "--effect risk-ratio --trim-fill linear --small-study-test egger");
    const SvgFigure figure = pictures.Figure("funnel");
    const Numbers effects = pictures.Results()["EffectSize"];
    const Numbers stdErrors = pictures.Results()["StdError"];
    const std::size_t imputed = pictures.Results()["TFImputedN0"];
    ASSERT_GT(imputed, 0U);
    EXPECT_EQ(figure.Marks("gpPt6", color::WHITE).size(), imputed);
    const std::vector<SvgMark> studies = figure.Marks("gpPt6", color::POOLED);
    ASSERT_EQ(studies.size(), effects.size());
    const PixelScale x = RatioScale(figure, "0.1", "10");
    const PixelScale y = UprightScale(figure, "0.5", "1.5");
    for (std::size_t i = 0; i < studies.size(); ++i) {
        EXPECT_NEAR(studies[i].x, x(effects[i]), 2 * halfPixelDigit);
        EXPECT_NEAR(studies[i].y - studies[0].y, y(stdErrors[i]) - y(stdErrors[0]), 4 * halfPixelDigit);
        EXPECT_EQ(studies[i].y > studies[0].y, stdErrors[i] > stdErrors[0]);
    }
    const std::vector<SvgMark> limit = figure.Marks("gpPt4", color::POOLED);
    ASSERT_EQ(limit.size(), 1U);
    EXPECT_NEAR(limit[0].x, x(pictures.Results()["RegBasedTestLimit"]), 2 * halfPixelDigit);
    // The two limits are the only dark lines with many points, and mirror each other.
    std::vector<SvgPoints> limits = figure.Lines(color::INK);
    std::erase_if(limits, [](const SvgPoints& line) { return line.size() < 20; });
    ASSERT_EQ(limits.size(), 2U);
    const double center = figure.Lines(color::ACCENT).at(0).front().x;
    EXPECT_NE(limits[0].back().x, center);
    EXPECT_NEAR(limits[0].back().x - center, center - limits[1].back().x, 4 * halfPixelDigit);
}

/// Every study has a mark in each panel. Mantel and Haenszel have no DFFITS and no tau².
TEST(Plots, DrawsEachStudyByItsInfluence)
{
    const Pictures pictures(Binary("bcg_vaccine.csv") + "--effect risk-ratio --influence");
    const json& results = pictures.Results();
    const SvgFigure figure = pictures.Figure("baujat");
    const std::vector<SvgMark> studies = figure.Marks("gpPt6", color::POOLED);
    const PixelScale x = LevelScale(figure, "0.5", "1.5");
    const PixelScale y = UprightScale(figure, "0.05", "0.25");
    ASSERT_EQ(studies.size(), 13U);
    for (std::size_t i = 0; i < studies.size(); ++i) {
        EXPECT_NEAR(studies[i].x, x(results["BaujatX"][i]), 2 * halfPixelDigit);
        EXPECT_NEAR(studies[i].y - studies[0].y, y(results["BaujatY"][i]) - y(results["BaujatY"][0]),
                    4 * halfPixelDigit);
    }
    EXPECT_THAT(figure.Words(), IsSupersetOf(Texts{"4", "8", "13"})); // numbers of records
    EXPECT_EQ(pictures.Figure("influence").Marks("gpPt6", color::POOLED).size(), 8 * studies.size());
    const Pictures tables(Binary("bcg_vaccine.csv") + "--model fixed --weights mantel-haenszel --influence");
    const SvgFigure panels = tables.Figure("influence");
    EXPECT_EQ(panels.Marks("gpPt6", color::POOLED).size() + panels.Marks("gpPt6", color::ACCENT).size(),
              6 * studies.size());
}

/// The slopes of the area's sides that start at the null, in effects per standard error.
Numbers SlopesFromTheNull(const SvgPoints& area, const SvgFigure& funnel)
{
    const PixelScale x = RatioScale(funnel, "0.1", "10");
    const PixelScale y = UprightScale(funnel, "0.0", "1.5");
    Numbers slopes;
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

TEST(Plots, ShadesAContourForEachLevel)
{
    const double z95 = 1.6448536269514722; // normal quantiles
    const double z90 = 1.2815515655446004;
    const struct
    {
        std::string test;
        std::string wording;
        Numbers slopes; ///< at level 0.1
    } cases[] = {{"two-sided", "two-sided", {-z95, z95}},
                 {"upper", "upper-tailed", {z90}},
                 {"lower", "lower-tailed", {-z90}}};
    for (const auto& one : cases) {
        SCOPED_TRACE(one.test);
        const Arguments options =
            Arguments{"--contours", one.test} + "--contour-level 0.1 --contour-level 0.02";
        const SvgFigure figure = Pictures(Binary("magnesium.csv") + options).Figure("funnel");
        for (const char* range : {"p < 0.02, ", "0.02 < p < 0.1, ", "p > 0.1, "})
            EXPECT_THAT(figure.Words(), Contains(range + one.wording));
        const std::vector<SvgPoints> areas = figure.Areas();
        ASSERT_EQ(areas.size(), 3U);
        const SvgPoints& frame = areas[0];
        for (const SvgPoint& point : areas[2]) {
            EXPECT_TRUE(point.x >= frame[0].x && point.x <= frame[2].x) << point.x;
            EXPECT_TRUE(point.y >= frame[0].y && point.y <= frame[1].y) << point.y;
        }
        // Sides are at least 150 pixels long; they and the scales are exact to half a hundredth of a pixel.
        EXPECT_THAT(SlopesFromTheNull(areas[2], figure),
                    testing::Pointwise(testing::DoubleNear(4e-4), one.slopes));
    }
}

TEST(Plots, SizesBubblesByWeight)
{
    const Pictures pictures(Bcg() + "--bubble latitude");
    const struct
    {
        const char* name;
        const char* weights;
        const char* axis;
    } cases[] = {{"bubble-1-latitude", "BubbleW", "latitude"},
                 {"labbe", "LabbePlotW", "Odds in the control group (log scale)"}};
    for (const auto& one : cases) {
        const SvgFigure figure = pictures.Figure(one.name);
        EXPECT_THAT(figure.Words(), Contains(one.axis));
        Numbers weights = pictures.Results()[one.weights][0];
        std::sort(weights.rbegin(), weights.rend());
        const std::vector<SvgMark> bubbles = figure.Marks("gpPt6", color::POOLED);
        ASSERT_EQ(bubbles.size(), weights.size());
        for (std::size_t i = 0; i < weights.size(); ++i)
            EXPECT_NEAR(bubbles[i].size, 17 * std::sqrt(weights[i] / weights[0]), halfPixelDigit) << i;
    }
}

/// The left and the right end of the outline.
std::pair<double, double> EndsOf(const SvgPoints& outline)
{
    const auto isLeftOf = [](const SvgPoint& one, const SvgPoint& other) { return one.x < other.x; };
    const auto [left, right] = std::minmax_element(outline.begin(), outline.end(), isLeftOf);
    return {left->x, right->x};
}

TEST(Plots, EndsIntervalsBeyondTheAxisInAnArrow)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("t.csv", "effect,variance,group\n0.1,0.01,wide\n0.3,0.01,wide\n"
                                                   "9,0.01,alone\n"
                                                   "0.2,0.01,close\n0.25,0.02,close\n0.15,0.01,close\n");
    const Pictures pictures(Effects(data) + "--subgroup group --knapp-hartung adjusted");
    const SvgFigure figure = pictures.Figure("forest");
    const json& lower = pictures.Results()["EstCILower"];
    const json& upper = pictures.Results()["EstCIUpper"];
    const PixelScale scale = LevelScale(figure, "0", "8");
    const std::vector<SvgPoints> areas = figure.Areas();
    ASSERT_EQ(areas.size(), 5U);
    // Groups in the order of their names: "alone" has no limits.
    const auto [left, right] = EndsOf(areas[0]);
    EXPECT_NEAR(left, scale(lower[1]), 2 * halfPixelDigit);
    EXPECT_NEAR(right, scale(upper[1]), 2 * halfPixelDigit);
    // The intervals of "wide" and of all studies go on at the left.
    for (const auto& [arrow, diamond, model] : {std::tuple(1U, 2U, 2U), std::tuple(3U, 4U, 3U)}) {
        const auto [tip, base] = EndsOf(areas[arrow]);
        const auto [start, end] = EndsOf(areas[diamond]);
        EXPECT_EQ(areas[arrow].size(), 3U);
        EXPECT_EQ(tip, EndsOf(areas[1]).first);
        EXPECT_NEAR(start, base, 2 * halfPixelDigit);
        EXPECT_NEAR(end, scale(upper[model]), 2 * halfPixelDigit);
        EXPECT_LT(scale(lower[model]), tip);
    }
    EXPECT_EQ(figure.Lines(color::POOLED).size(), 3U); // the prediction interval with an arrow at both ends
}

TEST(Plots, NotesWhenTheLineOfNoEffectIsBeyondTheAxis)
{
    const std::string remark = "The axis does not reach to no effect, which is at 0.";
    for (const auto& [studies, isBeyond] :
         {std::pair("100,0.1\n100,0.1\n", true), std::pair("0.1,0.1\n0.1,0.1\n", false)}) {
        const TemporaryFolder folder;
        const std::string data = folder.Write("t.csv", std::string("effect,variance\n") + studies);
        const SvgFigure figure = Pictures(Effects(data)).Figure("forest");
        const Texts words = figure.Words();
        EXPECT_EQ(figure.Lines(color::FAINT).empty(), isBeyond);
        EXPECT_EQ(std::count(words.begin(), words.end(), remark), isBeyond ? 1 : 0);
    }
}

/// They are the regression through the origin and its two parallels.
TEST(Plots, DrawsTheLinesOfTheGalbraithPlot)
{
    const Pictures pictures(Bcg());
    const SvgFigure figure = pictures.Figure("galbraith");
    EXPECT_EQ(figure.Marks("gpPt6", color::POOLED).size(), 13U);
    std::vector<SvgPoints> lines = figure.Lines(color::ACCENT);
    for (const SvgPoints& parallel : figure.Lines(color::INK))
        if (parallel.size() == 2 && parallel[1].x - parallel[0].x > 400)
            lines.push_back(parallel);
    const PixelScale x = LevelScale(figure, "0", "15");
    const PixelScale y = UprightScale(figure, "-10", "0");
    Numbers starts;
    for (const SvgPoints& line : lines) {
        const double run = (line[1].x - line[0].x) / (x(1) - x(0));
        const double rise = (line[1].y - line[0].y) / (y(1) - y(0));
        EXPECT_NEAR(rise / run, pictures.Results()["GalbRegrSlope"][0], 1e-3);
        starts.push_back((line[0].y - lines[0][0].y) / (y(1) - y(0)));
    }
    std::sort(starts.begin(), starts.end());
    const double offset = pictures.Results()["GalbRegrIntercept"][0];
    EXPECT_THAT(starts, testing::Pointwise(testing::DoubleNear(2e-3), {-offset, 0.0, offset}));
}

/// A group's line through the origin is its fixed-effect estimate, and each study lies on its effect's ray.
TEST(Plots, DrawsGalbraithPlotsOfGroupsByTheirStandardErrors)
{
    const Pictures pictures(Effects("passive_smoking.csv") + "--subgroup country --model fixed");
    const SvgFigure figure = pictures.Figure("galbraith-5-country-japan");
    const PixelScale x = LevelScale(figure, "0", "5");
    const PixelScale y = UprightScale(figure, "0", "2");
    const SvgPoints line = figure.Lines(color::ACCENT).at(0);
    const auto slopeTo = [&](double across, double up) {
        return (up - line[0].y) / (y(1) - y(0)) / ((across - line[0].x) / (x(1) - x(0)));
    };
    EXPECT_NEAR(slopeTo(line[1].x, line[1].y), pictures.Results()["EstEffectSize"][4], 1e-3);
    const std::vector<int> members = pictures.Results()["SubGroupStudyID"][4];
    const std::vector<SvgMark> marks = figure.Marks("gpPt6", color::POOLED);
    ASSERT_EQ(marks.size(), members.size());
    for (std::size_t i = 0; i < marks.size(); ++i)
        EXPECT_NEAR(slopeTo(marks[i].x, marks[i].y), pictures.Results()["EffectSize"][members[i]], 2e-3);
}

/// The p-value of a limit of the 95% interval is 0.05, by the normal distribution and by t; the edge of the
/// prediction region is as high over the limits of the prediction interval.
TEST(Plots, CrossesTheLevelOfTheDraperyAtTheLimits)
{
    for (const char* test : {"none", "adjusted"}) {
        const Pictures pictures(Bcg() + Arguments{"--drapery", "--knapp-hartung", test});
        const SvgFigure figure = pictures.Figure("drapery");
        const PixelScale x = RatioScale(figure, "0.1", "1");
        const PixelScale y = UprightScale(figure, "0.0", "1.0");
        const SvgPoints curve = figure.Lines(color::ACCENT).at(0);
        const auto top =
            std::min_element(curve.begin(), curve.end(), [](auto a, auto b) { return a.y < b.y; });
        const double level = top->y + (y(0.05) - y(1));
        const auto crossings = [&](const SvgPoints& line) {
            Numbers found;
            for (const SvgPoint& point : line)
                if (std::abs(point.y - level) < 3 * halfPixelDigit)
                    found.push_back(point.x);
            return found;
        };
        const auto pixels = [&](const char* lower, const char* upper) {
            return Numbers{x(pictures.Results()[lower][0]), x(pictures.Results()[upper][0])};
        };
        const auto near = testing::DoubleNear(3 * halfPixelDigit);
        EXPECT_NEAR(top->x, x(pictures.Results()["EstEffectSize"][0]), 2 * halfPixelDigit);
        EXPECT_THAT(crossings(curve), testing::Pointwise(near, pixels("EstCILower", "EstCIUpper")));
        EXPECT_THAT(crossings(figure.Areas().at(0)), testing::Pointwise(near, pixels("PILower", "PIUpper")));
    }
}

/// They are the lines of equal odds and of the pooled ratio.
TEST(Plots, DrawsTheLinesOfTheLabbePlot)
{
    const Pictures pictures(Bcg() + "--cumulative year");
    EXPECT_EQ(pictures.Figure("cumulative-forest").Marks("gpPt4", color::STUDY).size(), 13U);
    const SvgFigure figure = pictures.Figure("labbe");
    const SvgPoints equal = figure.Lines(color::FAINT).at(0);
    const SvgPoints effect = figure.Lines(color::ACCENT).at(0);
    const PixelScale odds = RatioScale(figure, "0.01", "0.1");
    EXPECT_NEAR(equal[1].x - equal[0].x, equal[0].y - equal[1].y, 0.25); // sides are whole pixels
    EXPECT_NEAR(equal[1].y - effect[1].y, odds(pictures.Results()["EstEffectSize"].back()) - odds(0), 0.5);
}

} // namespace
