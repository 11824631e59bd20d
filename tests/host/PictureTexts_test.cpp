#include "host/Pictures.h"
#include "host/draw/Picture.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>

using testing::Contains;
using testing::HasSubstr;

namespace {

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
    const std::vector<SvgText> texts = figure.Texts();
    for (const SvgMark& square : figure.Marks("gpPt4", host::color::STUDY)) {
        for (const SvgText& text : texts) {
            const Box box = BoxOf(text);
            const bool isBeside = box.right <= square.x - square.size || box.left >= square.x + square.size;
            EXPECT_TRUE(isBeside || std::abs(box.y - square.y) > 8) << text.text;
        }
    }
}

TEST(PictureTexts, KeepsForestsReadable)
{
    const std::string labels[] = {
        "S", "A label that names all authors, their institution, the journal and its publisher, WWW 1987",
        "東京大学医学部附属病院の無作為化比較試験"};
    for (const int count : {1, 2, 3, 13, 100}) {
        for (const std::string& label : labels) {
            SCOPED_TRACE(std::to_string(count) + label);
            std::string data = "study,effect,variance,group\n";
            for (int i = 0; i < count; ++i)
                data += fmt::format("\"{}\",{},{},{}\n", label, 20 * std::sin(i), 0.02 + 30.0 * (i % 5),
                                    i == 0 ? "one" : "rest");
            const TemporaryFolder folder;
            const Pictures pictures(Effects(folder.Write("data.csv", data)) +
                                    "--outcome binary --study study --subgroup group");
            const SvgFigure figure = pictures.Figure("forest");
            EXPECT_EQ(figure.Marks("gpPt4", host::color::STUDY).size(), static_cast<std::size_t>(count));
            EXPECT_GE(figure.Height(), 18.0 * count);
            ExpectReadable(figure);
            ExpectBesideSquares(figure);
        }
    }
}

TEST(PictureTexts, KeepsTheOtherPlotsReadable)
{
    const Pictures pictures(Bcg() + "--subgroup allocation --cumulative year --bubble latitude "
                                    "--contours two-sided --trim-fill run");
    EXPECT_THAT(pictures.Names(),
                testing::IsSupersetOf({"funnel.svg", "funnel-1-allocation-0.svg", "funnel-3-allocation-2.svg",
                                       "galbraith-2-allocation-1.svg", "labbe-1-allocation-0.svg"}));
    for (const std::string& name : pictures.Names()) {
        SCOPED_TRACE(name);
        const SvgFigure figure = pictures.Figure(name.substr(0, name.rfind('.')));
        const pugi::xml_node root = figure.Root();
        ExpectReadable(figure);
        EXPECT_STREQ(root.attribute("role").value(), "img");
        EXPECT_FALSE(root.select_node("//@shape-rendering")); // jagged edges
        EXPECT_THAT(root.child("title").text().get(), HasSubstr("plot"));
        EXPECT_THAT(root.child("desc").text().get(), HasSubstr("stud"));
    }
}

/// Texts that gnuplot or XML could take for commands, markup or the end of the data.
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

TEST(PictureTexts, ShowsHostileTextsAsTexts)
{
    const std::string column = "x_^@% <i>\"";
    std::string data = "study,effect,variance,group," + CsvField(column) + '\n';
    for (std::size_t i = 0; i < hostileTexts.size(); ++i)
        data += fmt::format("{},0.{},0.1,{},{}\n", CsvField(hostileTexts[i]), i,
                            CsvField(hostileTexts[i % 2]), i);
    const TemporaryFolder folder;
    const Pictures pictures(Effects(folder.Write("data.csv", data)) + "--study study --subgroup group" +
                            Arguments{"--cumulative", column, "--bubble", column});
    const Texts forest = pictures.Figure("forest").Words();
    const Texts cumulative = pictures.Figure("cumulative-forest").Words();
    for (const std::string& text : hostileTexts) {
        EXPECT_THAT(forest, Contains(text));
        EXPECT_THAT(cumulative, Contains("+ " + text));
    }
    EXPECT_THAT(forest, Contains("group: " + hostileTexts[0]));
    EXPECT_THAT(cumulative, Contains(column));
    EXPECT_THAT(pictures.Figure("bubble-1-x-i").Words(), Contains(column));
    EXPECT_FALSE(
        pictures.Figure("forest").Root().select_node("//*[local-name()='script' or local-name()='b']"));
    EXPECT_FALSE(std::filesystem::exists("pwned"));
}

} // namespace
