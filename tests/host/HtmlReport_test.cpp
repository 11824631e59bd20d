#include "host/RunProgram.h"
#include "host/SvgFigure.h"

#include <cmath>
#include <set>

using testing::Contains;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::StartsWith;

namespace {

/// The page of a run. All its elements are closed, so that an XML parser reads it.
class HtmlPage
{
public:
    explicit HtmlPage(const Arguments& arguments)
    {
        const TemporaryFolder folder;
        ReportOf(arguments + Arguments{"--html", folder.PathOf("page.html")});
        const pugi::xml_parse_result result = document_.load_string(folder.Read("page.html").c_str());
        EXPECT_TRUE(result) << result.description();
    }

    pugi::xpath_node_set Select(const char* path) const { return document_.select_nodes(path); }
    Texts TextsOf(const char* path) const
    {
        Texts texts;
        for (const pugi::xpath_node& found : Select(path))
            texts.emplace_back(found.node().text().get());
        return texts;
    }

private:
    pugi::xml_document document_;
};

TEST(HtmlReport, HasAllPartsAndPicturesAndIsSelfContained)
{
    const HtmlPage page(Bcg() + "--subgroup allocation --bubble latitude --trim-fill linear --level 0.9");
    EXPECT_THAT(page.TextsOf("//h1"), testing::ElementsAre(HasSubstr("90% level")));
    EXPECT_THAT(page.TextsOf("//h2"), IsSupersetOf({"Records", "Studies", "Pooled effect", "Cautions",
                                                    "Settings", "Command line"}));
    EXPECT_EQ(page.Select("//main/section[1][@id='result']/figure//title[@id='forest-title']").size(), 1U);
    EXPECT_EQ(page.Select("//nav//a").size(), page.Select("//main/section[h2]").size());
    EXPECT_EQ(page.Select("//table").size(), page.Select("//table[caption]").size());
    EXPECT_EQ(page.Select("//section[@id='studies']//table/tbody/tr").size(), 13U);
    EXPECT_EQ(page.Select("//figure").size(), 13U);
    EXPECT_EQ(page.Select("//figure[figcaption]//svg[@role='img'][title][desc]").size(), 13U);
    EXPECT_THAT(page.TextsOf("//td"), Contains("allocation"));
    // The page loads nothing and runs its own script alone, and each identifier is unique although all
    // pictures are in it.
    EXPECT_EQ(page.Select("//script").size(), 1U);
    EXPECT_EQ(page.Select("//link | //img | //iframe | //@src").size(), 0U);
    std::set<std::string> identifiers;
    for (const pugi::xpath_node& found : page.Select("//@id"))
        EXPECT_TRUE(identifiers.insert(found.attribute().value()).second) << found.attribute().value();
    for (const pugi::xpath_node& found : page.Select("//@*[name()='xlink:href' or name()='href']")) {
        const std::string link = found.attribute().value();
        EXPECT_EQ(link.front(), '#');
        EXPECT_TRUE(identifiers.count(link.substr(1))) << link;
    }
}

TEST(HtmlReport, HasMinusSignsAndWholeOptions)
{
    const HtmlPage page(Bcg());
    EXPECT_THAT(page.TextsOf("//section[@id='pooled-effect']//td"),
                Contains("\u22120.7452 [\u22121.1098, \u22120.3806]"));
    EXPECT_THAT(page.TextsOf("//section[@id='settings']//span[@class='option']"), Contains("--zero-cells"));
}

TEST(HtmlReport, ShowsHostileTextsAsTexts)
{
    const TemporaryFolder folder;
    const std::string data =
        folder.Write("a b'$(c).csv", "study,effect,variance,\"group <b> & \"\"\"\n"
                                     "\"</td><script>alert(1)</script> & \"\"q\"\" 'a'\",0.1,0.2,<i>\n"
                                     "M\xFCller,0.3,0.1,<i>\nC,0.2,0.1,&amp;\nD,0.2,0.1,&amp;\n");
    const std::string column = "group <b> & \"";
    const HtmlPage page(Effects(data) + "--study study" + Arguments{"--subgroup", column});
    EXPECT_THAT(page.TextsOf("//tbody/tr/th"), IsSupersetOf({"</td><script>alert(1)</script> & \"q\" 'a'",
                                                             "M\xC3\xBCller", "<i>", "&amp;"}));
    EXPECT_THAT(page.TextsOf("//thead/tr/th"), Contains(column));
    EXPECT_EQ(page.Select("//main//script | //i | //b").size(), 0U);
}

/// A shell can run the command line at the end again.
TEST(HtmlReport, EndsWithTheCommandLine)
{
    const TemporaryFolder folder;
    const std::string path = folder.Write("it's $HOME.csv", "effect,variance\n0.1,0.2\n0.3,0.1\n");
    const Texts lines = HtmlPage(Effects(path)).TextsOf("//pre/code");
    const std::string program = "meta-analysis ";
    ASSERT_THAT(lines, testing::ElementsAre(StartsWith(program + "effects ")));
    const std::string arguments = lines.front().substr(program.size());
    const std::string echo = "printf '%s\\n' " + arguments + " >" + ShellQuoted(folder.PathOf("echo"));
    ASSERT_EQ(std::system(echo.c_str()), 0);
    EXPECT_THAT(folder.Read("echo"),
                StartsWith("effects\n" + path + "\n--effect-size\neffect\n--variance\nvariance\n--html\n"));
}

/// For paper, a tall forest is cut between rows into slices, each between headings and axis.
TEST(HtmlReport, CutsTallForestsForPaper)
{
    std::string data = "effect,variance\n";
    for (int i = 0; i < 100; ++i)
        data += "0." + std::to_string(i) + ",0.1\n";
    const TemporaryFolder folder;
    const HtmlPage page(Effects(folder.Write("data.csv", data)));
    const pugi::xpath_node_set slices = page.Select("//figure[@class='sliced']/div[@class='paper']/div");
    ASSERT_GT(slices.size(), 1U);
    double end = 0;
    double axisTop = 0;
    double bottom = 0;
    for (const pugi::xpath_node& slice : slices) {
        const std::vector<double> headings =
            NumbersIn(slice.node().first_child().attribute("viewBox").value());
        const std::vector<double> rows =
            NumbersIn(slice.node().first_child().next_sibling().attribute("viewBox").value());
        const std::vector<double> axis = NumbersIn(slice.node().last_child().attribute("viewBox").value());
        const double start = end == 0 ? headings[3] : end;
        EXPECT_NEAR(rows[1], start, 0.01); // two decimals
        EXPECT_NEAR(std::remainder(rows[1] - headings[3], 19), 0, 0.01);
        EXPECT_LE(rows[3] + headings[3] + axis[3], 1.2 * rows[2] + 0.02);
        EXPECT_GE(12 * 510 / rows[2], 6); // points of a letter where the page is 18 cm wide
        end = rows[1] + rows[3];
        axisTop = axis[1];
        bottom = axis[1] + axis[3];
    }
    EXPECT_NEAR(end, axisTop, 0.01);
    const pugi::xpath_node whole = *page.Select("//figure[@class='sliced']//svg[@role]").begin();
    EXPECT_NEAR(bottom, whole.node().attribute("height").as_double(), 0.5); // a whole number
    EXPECT_EQ(HtmlPage(Bcg()).Select("//div[@class='paper']").size(), 0U);
}

} // namespace
