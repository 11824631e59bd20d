#include "host/report/HtmlReport.h"

#include "host/cli/OptionGroups.h"
#include "host/report/HtmlFigure.h"
#include "host/report/HtmlScript.h"
#include "host/report/HtmlStyle.h"
#include "host/report/HtmlTable.h"
#include "host/report/HtmlTexts.h"
#include "host/text/PlainText.h"
#include "host/text/ProgramInfo.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

namespace host {

namespace {

using Json = nlohmann::ordered_json;

std::string Element(const char* name, const std::string& text)
{
    return fmt::format("<{0}>{1}</{0}>\n", name, HtmlText(text));
}

/// Keeps the ends of lines, which HtmlEscaped() makes blanks.
std::string VerbatimElement(std::string_view text)
{
    std::string lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        lines += HtmlEscaped(std::string(text.substr(start, end - start))) + '\n';
        start = end + 1;
    }
    return fmt::format("<pre><code>{}</code></pre>\n", lines);
}

/// The section that a picture stands in, by the start of both names. Others follow the results.
struct PicturePlace
{
    std::string_view picture;
    std::string_view section;
};

constexpr PicturePlace PICTURE_PLACES[] = {{"cumulative-forest", "Cumulative analysis"},
                                           {"leave-one-out", "Leave-one-out"},
                                           {"influence", "Influence"},
                                           {"baujat", "Influence"},
                                           {"galbraith", "Heterogeneity"},
                                           {"labbe", "Heterogeneity"},
                                           {"funnel", "Small-study test"},
                                           {"funnel", "Trim-and-fill"},
                                           {"bubble", "Bubble plots"},
                                           {"bubble", "Tests of the effects"},
                                           {"residual", "Residual heterogeneity"},
                                           {"dfbetas", "DFBETAS"},
                                           {"drapery", "Heterogeneity"}};

/// The sections that tell what the results rest on. Pictures without a section of their own stand before
/// them.
constexpr std::string_view FOUNDATIONS[] = {"Studies", "Converted studies", "Preset", "Records"};

/// The position behind the last section of that title; 0 when there is none.
std::size_t BehindSection(const ReportSections& sections, std::string_view title)
{
    std::size_t behind = 0;
    for (std::size_t i = 0; i < sections.size(); ++i)
        if (sections[i].title.starts_with(title))
            behind = i + 1;
    return behind;
}

/// The number of sections that stand before the picture; none for a picture among the others.
std::optional<std::size_t> PlaceOf(const Picture& picture, const ReportSections& sections)
{
    if (picture.name == "forest" && !sections.empty())
        return 1;
    for (const PicturePlace& place : PICTURE_PLACES)
        if (picture.name.starts_with(place.picture))
            if (const std::size_t behind = BehindSection(sections, place.section); behind > 0)
                return behind;
    return std::nullopt;
}

std::size_t FirstFoundation(const ReportSections& sections)
{
    return static_cast<std::size_t>(std::find_if(sections.begin(), sections.end(),
                                                 [](const ReportSection& section) {
                                                     return std::find(std::begin(FOUNDATIONS),
                                                                      std::end(FOUNDATIONS),
                                                                      section.title) != std::end(FOUNDATIONS);
                                                 }) -
                                    sections.begin());
}

/// Renders one page, whose tables and figures are numbered, and whose sections are listed at its start.
class Page
{
public:
    void AddSection(const ReportSection& section, const std::vector<DrawnPicture>& pictures);
    void AddOtherPictures(const Drawing& drawing, const std::vector<DrawnPicture>& pictures);
    void AddCommandLine(const std::string& line);
    std::string Finished(const Report& report) const;

private:
    void Add(const std::string& title, const std::string& content);
    std::string Figures(const std::vector<DrawnPicture>& pictures);

    std::string contents_;
    std::string html_;
    std::map<std::string, int> identifiers_;
    int tableCount_ = 0;
    int figureCount_ = 0;
};

/// The identifier of a section follows from its title, so that a link to it stays right.
void Page::Add(const std::string& title, const std::string& content)
{
    std::string identifier = FileNamePart(title);
    if (const int count = ++identifiers_[identifier]; count > 1)
        identifier += fmt::format("_{}", count);
    contents_ += fmt::format("<li><a href=\"#{}\">{}</a></li>\n", identifier, HtmlEscaped(title));
    html_ += fmt::format("<section id=\"{}\">\n{}{}</section>\n", identifier, Element("h2", title), content);
}

std::string Page::Figures(const std::vector<DrawnPicture>& pictures)
{
    std::string html;
    for (const DrawnPicture& drawn : pictures)
        html += HtmlFigure(drawn, ++figureCount_);
    return html;
}

void Page::AddSection(const ReportSection& section, const std::vector<DrawnPicture>& pictures)
{
    std::string content;
    if (!section.table.empty())
        content += HtmlTable(fmt::format("Table {}. {}", ++tableCount_, section.title), section.table);
    for (const std::string& sentence : section.sentences)
        content += Element("p", sentence);
    if (!section.verbatim.empty())
        content += VerbatimElement(section.verbatim);
    Add(section.title, content + Figures(pictures));
}

void Page::AddOtherPictures(const Drawing& drawing, const std::vector<DrawnPicture>& pictures)
{
    std::string content = Figures(pictures);
    for (const std::string& failure : drawing.failures)
        content += Element("p", failure);
    if (!content.empty())
        Add("Pictures", content);
}

void Page::AddCommandLine(const std::string& line)
{
    Add("Command line", fmt::format("<pre><code>{}</code></pre>\n<p>{} {}</p>\n", HtmlEscaped(line),
                                    PROGRAM_NAME, PROGRAM_VERSION));
}

/// The security policy keeps the page from loading anything, and from running anything but its own script,
/// whatever its texts are.
std::string Page::Finished(const Report& report) const
{
    const bool hasResult = !report.sections.empty() && !report.sections.front().sentences.empty();
    return fmt::format(
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n"
        "<meta name=\"description\" content=\"{1}\"/>\n"
        "<meta http-equiv=\"Content-Security-Policy\" "
        "content=\"default-src 'none'; style-src 'unsafe-inline'; script-src 'sha256-{2}'\"/>\n"
        "<title>{0}</title>\n<style>{3}</style>\n</head>\n<body>\n"
        "<header>\n<a class=\"skip\" href=\"#main\">Skip to the result</a>\n<h1>{0}</h1>\n</header>\n"
        "<nav aria-label=\"Contents\">\n<details>\n<summary>Contents</summary>\n<ul>\n{4}</ul>\n"
        "</details>\n</nav>\n<main id=\"main\" tabindex=\"-1\">\n{5}</main>\n"
        "<script>{6}</script>\n</body>\n</html>\n",
        HtmlEscaped(report.title),
        HtmlEscaped(hasResult ? report.sections.front().sentences.front() : report.title), HTML_SCRIPT_SHA256,
        HTML_STYLE, contents_, html_, HTML_SCRIPT);
}

/// The pictures of each place, in their order; those without a section stand behind the last.
std::vector<std::vector<DrawnPicture>> PicturesByPlace(const std::vector<DrawnPicture>& pictures,
                                                       const ReportSections& sections)
{
    std::vector<std::vector<DrawnPicture>> places(sections.size() + 2);
    for (const DrawnPicture& drawn : pictures)
        places[PlaceOf(drawn.picture, sections).value_or(sections.size() + 1)].push_back(drawn);
    return places;
}

std::string TextOf(const Json& value)
{
    if (value.is_boolean())
        return value.get<bool>() ? "yes" : "no";
    if (value.is_string())
        return value.get<std::string>();
    if (!value.is_array())
        return value.dump();
    std::vector<std::string> texts;
    for (const Json& element : value)
        texts.push_back(TextOf(element));
    return fmt::format("{}", fmt::join(texts, ", "));
}

bool IsGiven(const Json& value)
{
    return !value.is_null() && !(value.is_array() && value.empty());
}

/// Every option that has a value, given or by default.
ReportSection SettingsSection(Options options)
{
    ReportColumn names = {"Option", {}, true};
    ReportColumn values = {"Value", {}, true};
    for (const OptionDefinition& definition : DefineOptions(options)) {
        const Json value = definition.value();
        if (!IsGiven(value))
            continue;
        names.cells.push_back("--" + definition.name);
        values.cells.push_back(TextOf(value));
    }
    return {"Settings", {names, values}, {}};
}

/// Quotes the argument for a POSIX shell.
std::string ShellQuoted(const std::string& argument)
{
    constexpr const char* PLAIN = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_@%+=:,./-";
    if (!argument.empty() && argument.find_first_not_of(PLAIN) == std::string::npos)
        return argument;
    std::string quoted = "'";
    for (const char c : argument)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + '\'';
}

std::string CommandLine(const Options& options)
{
    std::string line = PROGRAM_NAME;
    for (const std::string& argument : options.arguments)
        line += ' ' + ShellQuoted(argument);
    return line;
}

} // namespace

std::string RenderHtml(const Options& options, const Report& report, const Drawing& drawing)
{
    Page page;
    const ReportSections& sections = report.sections;
    const std::vector<std::vector<DrawnPicture>> pictures = PicturesByPlace(drawing.pictures, sections);
    const std::size_t foundation = FirstFoundation(sections);
    for (std::size_t i = 0; i < sections.size(); ++i) {
        if (i == foundation)
            page.AddOtherPictures(drawing, pictures.back());
        page.AddSection(sections[i], pictures[i + 1]);
    }
    page.AddSection(SettingsSection(options), {});
    page.AddCommandLine(CommandLine(options));
    return page.Finished(report);
}

} // namespace host
