#include "host/PlainText.h"
#include "host/PlotAxes.h"
#include "host/RunProgram.h"
#include "host/SvgFigure.h"
#include "support/Compare.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

using Texts = std::vector<std::string>;

constexpr const char* study = "#6c9bc8";
constexpr const char* pooled = "#173a5e";
/// Coordinates are written with two decimals.
constexpr double halfPixelDigit = 0.0051;

/// The pictures of a run, and its results.
class Pictures
{
public:
    explicit Pictures(const Arguments& arguments)
    {
        const ProgramRun run = RunProgram(
            arguments + Arguments{"--plots", folder_.PathOf("plots"), "--json", folder_.PathOf("json")});
        EXPECT_EQ(run.exitStatus, 0) << run.errors;
        results_ = json::parse(folder_.Read("json"))["results"];
        for (const auto& entry : std::filesystem::directory_iterator(folder_.PathOf("plots")))
            names_.push_back(entry.path().filename().string());
        std::sort(names_.begin(), names_.end());
    }

    const Texts& Names() const { return names_; }
    const json& Results() const { return results_; }
    SvgFigure Figure(const std::string& name) const
    {
        return SvgFigure(folder_.Read("plots/" + name + ".svg"));
    }

private:
    TemporaryFolder folder_;
    Texts names_;
    json results_;
};

Arguments Bcg(const Arguments& more = {})
{
    return Binary("bcg_vaccine.csv") + Arguments{"--study", "study"} + more;
}

Texts TextsOf(const SvgFigure& figure)
{
    Texts texts;
    for (const SvgText& text : figure.Texts())
        texts.push_back(text.text);
    return texts;
}

struct Box
{
    double left;
    double right;
    double y;
};

Box BoxOf(const SvgText& text)
{
    const double width = 12 * host::TextWidth(text.text, text.isBold);
    const double left = text.anchor == "start" ? text.x
                        : text.anchor == "end" ? text.x - width
                                               : text.x - width / 2;
    return {left, left + width, text.y};
}

/// No text reaches beyond the picture or into another one.
void ExpectReadable(const SvgFigure& figure)
{
    std::vector<SvgText> texts = figure.Texts();
    for (const SvgText& text : texts)
        EXPECT_TRUE(!text.isRotated || text.x >= 14) << text.text; // the baseline of a title on the left
    std::erase_if(texts, [](const SvgText& text) { return text.isRotated; });
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const Box box = BoxOf(texts[i]);
        EXPECT_GE(box.left, 0) << texts[i].text;
        EXPECT_LE(box.right, figure.Width()) << texts[i].text;
        EXPECT_GE(box.y, 12) << texts[i].text;
        EXPECT_LE(box.y, figure.Height()) << texts[i].text;
        for (std::size_t k = 0; k < i; ++k) {
            const Box other = BoxOf(texts[k]);
            const bool isBeside = box.right <= other.left || box.left >= other.right;
            EXPECT_TRUE(isBeside || std::abs(box.y - other.y) >= 12)
                << texts[i].text << " on " << texts[k].text;
        }
    }
}

/// No text lies on a square.
void ExpectBesideSquares(const SvgFigure& figure)
{
    for (const SvgMark& square : figure.Marks("gpPt4", study)) {
        for (const SvgText& text : figure.Texts()) {
            const Box box = BoxOf(text);
            const bool isBeside = box.right <= square.x - square.size || box.left >= square.x + square.size;
            EXPECT_TRUE(isBeside || std::abs(box.y - square.y) > 8) << text.text;
        }
    }
}

/// From numbers on a linear scale to pixels, by two ticks of an axis.
class PixelScale
{
public:
    PixelScale(double first, double firstPixel, double last, double lastPixel)
        : first_(first), firstPixel_(firstPixel), perUnit_((lastPixel - firstPixel) / (last - first))
    {}
    double operator()(double value) const { return firstPixel_ + (value - first_) * perUnit_; }

private:
    double first_;
    double firstPixel_;
    double perUnit_;
};

PixelScale RatioScale(const SvgFigure& figure, const char* first, const char* last)
{
    return {std::log(std::stod(first)), figure.TickAt(first, &SvgText::x, "middle"),
            std::log(std::stod(last)), figure.TickAt(last, &SvgText::x, "middle")};
}

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
    const std::vector<SvgMark> squares = figure.Marks("gpPt4", study);
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

TEST(Drawings, KeepsForestsReadable)
{
    const std::string longLabel =
        "A label that names all authors, their institution, the journal and its publisher, WWW 1987";
    for (const std::size_t count : {1U, 2U, 3U, 13U, 100U}) {
        for (const std::string& label :
             {std::string("S"), longLabel, std::string("東京大学医学部附属病院の無作為化比較試験")}) {
            SCOPED_TRACE(std::to_string(count) + label);
            std::string data = "study,effect,variance,group\n";
            for (std::size_t i = 0; i < count; ++i)
                data += '"' + label + "\"," + std::to_string(20 * std::sin(static_cast<double>(i))) + ',' +
                        std::to_string(0.02 + 30 * static_cast<double>(i % 5)) + ',' +
                        (i == 0 ? "one" : "rest") + '\n';
            const TemporaryFolder folder;
            const Pictures pictures({"effects", folder.Write("data.csv", data), "--outcome", "binary",
                                     "--study", "study", "--effect-size", "effect", "--variance", "variance",
                                     "--subgroup", "group"});
            const SvgFigure figure = pictures.Figure("forest");
            EXPECT_EQ(figure.Marks("gpPt4", study).size(), count);
            EXPECT_GE(figure.Height(), 18.0 * static_cast<double>(count));
            ExpectReadable(figure);
            ExpectBesideSquares(figure);
        }
    }
}

TEST(Drawings, KeepsTheOtherPlotsReadable)
{
    const Pictures pictures(Bcg({"--subgroup", "allocation", "--cumulative", "year", "--bubble", "latitude",
                                 "--contours", "two-sided", "--trim-fill", "run"}));
    for (const std::string& name : pictures.Names()) {
        SCOPED_TRACE(name);
        const SvgFigure figure = pictures.Figure(name.substr(0, name.rfind('.')));
        ExpectReadable(figure);
        EXPECT_EQ(std::string(figure.Root().attribute("role").value()), "img");
        EXPECT_THAT(figure.ChildText("title"), HasSubstr("plot"));
        EXPECT_THAT(figure.ChildText("desc"), HasSubstr("stud"));
    }
}

TEST(Drawings, DrawsTheFunnelWithItsHollowImputedStudies)
{
    const Pictures pictures(Binary("magnesium.csv") +
                            Arguments{"--effect", "risk-ratio", "--trim-fill", "linear"});
    const SvgFigure figure = pictures.Figure("funnel");
    const json& results = pictures.Results();
    const std::vector<double> stdErrors = results["StdError"];
    const std::vector<SvgMark> studies = figure.Marks("gpPt6", pooled);
    ASSERT_EQ(studies.size(), stdErrors.size());
    const std::size_t imputed = results["TFImputedN0"];
    ASSERT_GT(imputed, 0U);
    EXPECT_EQ(figure.Marks("gpPt6", "#ffffff").size(), imputed);

    const PixelScale x = RatioScale(figure, "0.1", "10");
    const PixelScale y(0.5, figure.TickAt("0.5", &SvgText::y, "end"), 1.5,
                       figure.TickAt("1.5", &SvgText::y, "end"));
    const std::vector<double> effects = results["EffectSize"];
    for (std::size_t i = 0; i < studies.size(); ++i) {
        EXPECT_NEAR(studies[i].x, x(effects[i]), 2 * halfPixelDigit);
        // The numbers at the axis stand lower than their ticks, all by the same.
        EXPECT_NEAR(studies[i].y - studies[0].y, y(stdErrors[i]) - y(stdErrors[0]), 4 * halfPixelDigit);
        EXPECT_EQ(studies[i].y > studies[0].y, stdErrors[i] > stdErrors[0]);
    }
}

TEST(Drawings, ShadesAContourForEachLevel)
{
    for (const char* test : {"two-sided", "upper", "lower"}) {
        const Texts texts =
            TextsOf(Pictures(Bcg({"--contours", test, "--contour-level", "0.1", "--contour-level", "0.02"}))
                        .Figure("funnel"));
        EXPECT_THAT(texts, testing::IsSupersetOf(Texts{"p < 0.02", "0.02 < p < 0.1", "p > 0.1"})) << test;
    }
}

TEST(Drawings, SizesBubblesByWeight)
{
    const Pictures pictures(Bcg({"--bubble", "latitude"}));
    const auto expectAreas = [](const SvgFigure& figure, std::vector<double> weights) {
        std::sort(weights.rbegin(), weights.rend());
        const std::vector<SvgMark> bubbles = figure.Marks("gpPt6", pooled);
        ASSERT_EQ(bubbles.size(), weights.size());
        for (std::size_t i = 0; i < weights.size(); ++i)
            EXPECT_NEAR(bubbles[i].size, 17 * std::sqrt(weights[i] / weights[0]), halfPixelDigit) << i;
    };
    expectAreas(pictures.Figure("bubble-1-latitude"), pictures.Results()["BubbleW"][0]);
    expectAreas(pictures.Figure("labbe"), pictures.Results()["LabbePlotW"][0]);
    EXPECT_THAT(TextsOf(pictures.Figure("bubble-1-latitude")), Contains("latitude"));
    EXPECT_THAT(TextsOf(pictures.Figure("labbe")), Contains("Odds in the control group (log scale)"));
}

/// Texts that would be commands, markup or ends of data, if they were not kept apart from them.
const Texts hostileTexts = {
    "Müller & \"Söhne\" <b>x</b>", "_a^b@c@ 100%d %s", "{/Bold x} \\n \\101 `id` $HOME",
    "'; set output 'pwned'; #",    "END_OF_TEXTS",     "\" ; !touch pwned",
    "<script>alert(1)</script>",   "&amp; ]]> <!--",   "#comment"};

std::string CsvField(const std::string& text)
{
    std::string field = "\"";
    for (const char c : text)
        field += c == '"' ? std::string("\"\"") : std::string(1, c);
    return field + '"';
}

TEST(Drawings, ShowsHostileTextsAsTexts)
{
    const std::string column = "x_^@% <i>\"";
    std::string data = "study,effect,variance,group," + CsvField(column) + '\n';
    for (std::size_t i = 0; i < hostileTexts.size(); ++i)
        data += CsvField(hostileTexts[i]) + ",0." + std::to_string(i) + ",0.1," +
                CsvField(hostileTexts[i % 2]) + ',' + std::to_string(i) + '\n';
    const TemporaryFolder folder;
    const Pictures pictures({"effects", folder.Write("data.csv", data), "--study", "study", "--effect-size",
                             "effect", "--variance", "variance", "--subgroup", "group", "--cumulative",
                             column, "--bubble", column});
    const Texts forest = TextsOf(pictures.Figure("forest"));
    const Texts cumulative = TextsOf(pictures.Figure("cumulative-forest"));
    for (const std::string& text : hostileTexts) {
        EXPECT_THAT(forest, Contains(text));
        EXPECT_THAT(cumulative, Contains("+ " + text));
    }
    EXPECT_THAT(forest, Contains("group: " + hostileTexts[0]));
    EXPECT_THAT(cumulative, Contains(column));
    EXPECT_THAT(TextsOf(pictures.Figure("bubble-1-x-i")), Contains(column));
    EXPECT_EQ(pictures.Figure("forest").Root().select_node("//*[local-name()='script' or local-name()='b']"),
              nullptr);
    EXPECT_FALSE(std::filesystem::exists("pwned"));
}

TEST(Drawings, WritesTheFormatThatIsAskedFor)
{
    const TemporaryFolder folder;
    for (const auto& [format, signature] :
         std::map<std::string, std::string>{{"png", "\x89PNG"}, {"pdf", "%PDF-"}, {"svg", "<?xml"}}) {
        const ProgramRun run =
            RunProgram(Bcg({"--plots", folder.PathOf("a/b"), "--plot-format", format, "--json", "-"}));
        EXPECT_EQ(run.exitStatus, 0) << run.errors;
        EXPECT_THAT(folder.Read("a/b/labbe." + format), StartsWith(signature));
    }
}

/// Lets the programs started meanwhile find no others.
class EmptyPath
{
public:
    EmptyPath() : path_(std::getenv("PATH")) { setenv("PATH", "/nonexistent", 1); }
    ~EmptyPath() { setenv("PATH", path_.c_str(), 1); }
    EmptyPath(const EmptyPath&) = delete;
    EmptyPath& operator=(const EmptyPath&) = delete;

private:
    std::string path_;
};

TEST(Drawings, KeepsTheAnalysisWhenGnuplotIsNotInstalled)
{
    const TemporaryFolder folder;
    const EmptyPath withoutGnuplot;
    const ProgramRun run = RunProgram(Bcg({"--plots", folder.PathOf("plots"), "--html", folder.PathOf("page"),
                                           "--json", folder.PathOf("json")}));
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_THAT(run.errors, HasSubstr("gnuplot is not installed"));
    EXPECT_THAT(run.output, HasSubstr("Pooled effect"));
    EXPECT_EQ(json::parse(folder.Read("json"))["records"]["used"], 13);
    EXPECT_THAT(folder.Read("page"), HasSubstr("gnuplot is not installed"));
    EXPECT_THAT(folder.Read("page"), HasSubstr("Table 2. Pooled effect"));
}

TEST(Drawings, RefusesPlacesThatCannotHoldThem)
{
    const TemporaryFolder folder;
    const std::string file = folder.Write("file", "");
    EXPECT_THAT(RunProgram(Bcg({"--plots", file})).errors, HasSubstr("is no folder"));
    const ProgramRun run = RunProgram(Bcg({"--plots", file + "/below"}));
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_THAT(run.errors, HasSubstr("cannot be made"));
    EXPECT_THAT(RunProgram(Bcg({"--html", TESTS_DIR "/data/bcg_vaccine.csv"})).errors,
                HasSubstr("data file"));
    EXPECT_THAT(RunProgram(Bcg({"--html", file, "--json", file})).errors, HasSubstr("the file of --json"));
}

TEST(Drawings, LabelsRatioAxesAtRoundNumbers)
{
    struct Case
    {
        double first;
        double last;
        Texts ticks;
    };
    const std::vector<Case> cases = {
        {0.06, 7.0, {"0.1", "0.2", "0.5", "1", "2", "5"}},
        {0.4, 1.3, {"0.4", "0.6", "0.8", "1", "1.2"}},
        {0.97, 1.04, {"0.98", "1", "1.02", "1.04"}},
        {0.003, 40, {"0.01", "0.1", "1", "10"}},
        {1e-7, 1e5, {"1e-6", "0.0001", "0.01", "1", "100", "10000"}},
        {1e-40, 1e40, {"1e-36", "1e-24", "1e-12", "1", "1e12", "1e24", "1e36"}},
    };
    for (const Case& one : cases) {
        host::Extent logarithms;
        // A tick at an end counts, whatever the rounding of the logarithm.
        logarithms.Cover({std::log(one.first) - 1e-9, std::log(one.last) + 1e-9});
        Texts texts;
        for (const host::Tick& tick : host::RatioTicks(logarithms)) {
            texts.push_back(tick.text);
            EXPECT_TRUE(Close(std::exp(tick.at), std::stod(tick.text), 1e-13)); // a logarithm of up to 92
        }
        EXPECT_EQ(texts, one.ticks);
    }
}

TEST(Drawings, LabelsNumberAxesAtRoundNumbersWithTheDigitsTheyNeed)
{
    const auto texts = [](const std::vector<double>& covered) {
        host::Extent extent;
        extent.Cover(covered);
        Texts found;
        for (const host::Tick& tick : host::NumberTicks(extent))
            found.push_back(tick.text);
        return found;
    };
    EXPECT_EQ(texts({-0.31, missing, 0.31, infinity, notANumber}),
              (Texts{"-0.3", "-0.2", "-0.1", "0", "0.1", "0.2", "0.3"}));
    EXPECT_EQ(texts({1234567.1, 1234569}), (Texts{"1234567.5", "1234568", "1234568.5", "1234569"}));
    EXPECT_EQ(texts({0, 4e-9}), (Texts{"0", "1e-09", "2e-09", "3e-09", "4e-09"}));
    // Steps are lost in such numbers: any ticks will do, but there must be an end of them.
    EXPECT_LE(texts({1e17, 1e17 + 16}).size(), 15U);
}

} // namespace
