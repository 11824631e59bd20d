// What forest plots show beside the intervals, and in which order and size.

#include "host/Pictures.h"
#include "host/draw/Picture.h"

using testing::IsSupersetOf;
using testing::Not;

namespace {

/// BCG vaccination as risk ratios. The Cochrane estimates are those of Colditz et al. (1994), JAMA 271,
/// 698-702; the counts are the file's.
Pictures BcgForest(const Arguments& more)
{
    return Pictures(Bcg({"--effect", "risk-ratio"}) + more);
}

TEST(Forest, HasTheFiguresAndTestsThatItsLayoutPrints)
{
    const struct
    {
        const char* layout;
        Texts texts;
    } cases[] = {
        {"revman",
         {"Study or Subgroup", "Vaccine", "Events", "Total", "Risk Ratio", "IV, Random, 95% CI", "4", "123",
          "Total (95% CI)", "1510", "191064", "100.0%", "0.49 [0.34, 0.70]", "Favours vaccine",
          "Heterogeneity: Tau² = 0.31; Chi² = 152.23, df = 12 (P < 0.00001); I² = 92%"}},
        {"bmj",
         {"No of events/total", "4/123", "1065/191064", "100.0", "0.49 (0.34 to 0.70)", "Favours no vaccine",
          "Test for overall effect: z=\u22123.97, P<0.001"}},
        {"jama",
         {"Source", "No. of", "events", "4", "139", "0.49 (0.34-0.70)", "Weight, %", "Favors vaccine",
          "Heterogeneity: τ² = 0.31; χ²₁₂ = 152.23 (P < .001); I² = 92.2%"}},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.layout);
        const Pictures pictures = BcgForest({"--layout", one.layout, "--group-names", "Vaccine,No vaccine",
                                             "--favours", "vaccine,no vaccine"});
        EXPECT_THAT(pictures.Figure("forest").Words(), IsSupersetOf(one.texts));
    }
}

TEST(Forest, WritesOutDifferencesThatAreLargeAsARule)
{
    const TemporaryFolder folder;
    const std::string file = folder.Write("data.csv", "effect,variance\n3e6,1e12\n5e5,1e12\n");
    const Pictures pictures(Effects(file) + "--outcome continuous");
    EXPECT_THAT(pictures.Figure("forest").Words(),
                IsSupersetOf(Texts{"3000000 [1040036, 4959964]", "500000 [\u22121459964, 2459964]"}));
}

/// Labels from top to bottom.
Texts LabelsOf(const SvgFigure& figure)
{
    std::vector<SvgText> texts = figure.Texts();
    std::erase_if(texts,
                  [](const SvgText& text) { return text.x > 15 || text.anchor != "start" || text.isBold; });
    std::stable_sort(texts.begin(), texts.end(),
                     [](const SvgText& one, const SvgText& other) { return one.y < other.y; });
    Texts labels;
    for (const SvgText& text : texts)
        labels.push_back(text.text);
    return labels;
}

TEST(Forest, SortsStudiesWithTheirSquaresAndTexts)
{
    for (const auto& [sort, first] :
         {std::pair("file", "Aronson"), std::pair("effect", "Vandiviere et al"),
          std::pair("weight", "TPT Madras"), std::pair("latitude", "Frimodt-Moller et al")}) {
        SCOPED_TRACE(sort);
        const Pictures pictures = BcgForest({"--forest-sort", sort, "--forest-columns", "latitude"});
        const SvgFigure figure = pictures.Figure("forest");
        EXPECT_EQ(LabelsOf(figure).front(), first);
        std::vector<double> squares;
        for (const SvgMark& square : figure.Marks("gpPt4", host::color::STUDY))
            squares.push_back(square.x);
        EXPECT_EQ(std::is_sorted(squares.begin(), squares.end()), std::string(sort) == "effect");
    }
}

TEST(Forest, CutsTheAxisAtItsLimits)
{
    const SvgFigure figure = BcgForest({"--axis-limits", "0.2,2"}).Figure("forest");
    const double left = figure.TickX("0.2");
    const double right = figure.TickX("2");
    for (const SvgPoints& line : figure.Lines(host::color::INK))
        for (const SvgPoint& point : line)
            EXPECT_TRUE(line.size() != 2 || (point.x > left - 0.1 && point.x < right + 0.1)) << point.x;
    EXPECT_EQ(RunProgram(Bcg({"--axis-limits", "0,2", "--plots", "x"})).exitStatus, 2);
}

TEST(Forest, HasTheWeightsOfBothModels)
{
    const Texts words = BcgForest({"--forest-models", "both"}).Figure("forest").Words();
    EXPECT_EQ(std::count(words.begin(), words.end(), "100.0%"), 2);
    EXPECT_THAT(words, IsSupersetOf(Texts{"Fixed-effect model", "0.65 [0.60, 0.70]", "Random-effects model",
                                          "0.49 [0.34, 0.70]"}));
}

/// A big-endian number in a PNG file.
std::uint32_t NumberAt(const std::string& png, std::size_t place)
{
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i)
        number = number << 8U | static_cast<unsigned char>(png.at(place + i));
    return number;
}

TEST(Forest, HeadsStudiesOutsideTheGroupsByWhatTheyLack)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("t.csv", "e,v,g,year\n1,1,,1\n2,1,x,2\n3,1,x,\n4,1,y,4\n");
    ReportOf({"effects", data, "--outcome", "continuous", "--effect-size", "e", "--variance", "v",
              "--subgroup", "g", "--cumulative", "year", "--plots", folder.PathOf("p")});
    std::vector<std::string> headings;
    for (const SvgText& text : SvgFigure(folder.Read("p/forest.svg")).Texts())
        if (text.text.ends_with(": not known"))
            headings.push_back(text.text);
    EXPECT_EQ(headings, (std::vector<std::string>{"g: not known", "year: not known"}));
}

/// 170 mm at 300 dpi are 2008 pixels, and 300 dpi are 11811 pixels a metre.
TEST(Forest, HasTheSizeAndTheResolutionThatAreAskedFor)
{
    const TemporaryFolder folder;
    const Arguments size = Bcg({"--plots", folder.PathOf("p"), "--picture-size", "170x120mm"});
    ReportOf(size + "--plot-format png --resolution 300");
    const std::string png = folder.Read("p/forest.png");
    EXPECT_NEAR(NumberAt(png, 16), 2008, 1);
    EXPECT_NEAR(NumberAt(png, 20), 1417, 1);
    EXPECT_EQ(png.substr(37, 4), "pHYs");
    EXPECT_EQ(NumberAt(png, 41), 11811U);
    ReportOf(size);
    EXPECT_NEAR(SvgFigure(folder.Read("p/forest.svg")).Width(), 170 / 25.4 * 96, 0.01);
}

} // namespace
