#include "host/report/HtmlReport.h"

#include "host/cli/OptionGroups.h"
#include "host/report/HtmlFigure.h"
#include "host/report/HtmlStyle.h"
#include "host/report/ShownRows.h"
#include "host/text/ProgramInfo.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace host {

namespace {

using Json = nlohmann::ordered_json;

std::string Element(const char* name, const std::string& text)
{
    return fmt::format("<{0}>{1}</{0}>\n", name, HtmlEscaped(text));
}

std::string HeaderCell(const ReportColumn& column)
{
    if (column.header.empty())
        return "<td></td>";
    return fmt::format("<th scope=\"col\"{}>{}</th>", column.isText ? " class=\"text\"" : "",
                       HtmlEscaped(column.header));
}

/// A first column of texts holds the row headers.
std::string Cell(const ReportColumn& column, std::size_t row, bool isFirst)
{
    const std::string text = HtmlEscaped(column.cells[row]);
    if (!column.isText)
        return fmt::format("<td>{}</td>", text);
    return isFirst ? fmt::format("<th scope=\"row\" class=\"text\">{}</th>", text)
                   : fmt::format("<td class=\"text\">{}</td>", text);
}

std::string TableBody(const std::vector<ReportColumn>& table)
{
    std::string body;
    for (std::size_t row = 0; row < ShownRowsOf(table); ++row) {
        body += "<tr>";
        for (const ReportColumn& column : table)
            body += Cell(column, row, &column == &table.front());
        body += "</tr>\n";
    }
    return body;
}

/// Renders one page, whose tables and figures are numbered.
class Page
{
public:
    void AddHead(const std::string& title);
    void AddSection(const ReportSection& section);
    void AddPictures(const Drawing& drawing);
    void AddCommandLine(const std::string& line);
    std::string Finished() { return html_ + "</main>\n</body>\n</html>\n"; }

private:
    void AddTable(const std::string& title, const std::vector<ReportColumn>& table);

    std::string html_;
    int tableCount_ = 0;
};

/// The security policy keeps the page from loading or running anything, whatever its texts are.
void Page::AddHead(const std::string& title)
{
    html_ += fmt::format("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n"
                         "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n"
                         "<meta http-equiv=\"Content-Security-Policy\" "
                         "content=\"default-src 'none'; style-src 'unsafe-inline'\"/>\n"
                         "<title>{0}</title>\n<style>{1}</style>\n</head>\n<body>\n<main>\n<h1>{0}</h1>\n",
                         HtmlEscaped(title), HTML_STYLE);
}

void Page::AddTable(const std::string& title, const std::vector<ReportColumn>& table)
{
    std::string headers;
    for (const ReportColumn& column : table)
        headers += HeaderCell(column);
    const std::string caption = fmt::format("Table {}. {}", ++tableCount_, title);
    html_ += fmt::format("<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"{0}\">\n<table>\n"
                         "<caption>{0}</caption>\n<thead><tr>{1}</tr></thead>\n<tbody>\n{2}</tbody>\n"
                         "</table>\n</div>\n",
                         HtmlEscaped(caption), headers, TableBody(table));
    if (const std::string sentence = SentenceOfRowsNotShown(table); !sentence.empty())
        html_ += Element("p", sentence);
}

void Page::AddSection(const ReportSection& section)
{
    html_ += "<section>\n" + Element("h2", section.title);
    if (!section.table.empty())
        AddTable(section.title, section.table);
    for (const std::string& sentence : section.sentences)
        html_ += Element("p", sentence);
    if (!section.verbatim.empty())
        html_ += fmt::format("<pre><code>{}</code></pre>\n", HtmlEscaped(section.verbatim));
    html_ += "</section>\n";
}

void Page::AddPictures(const Drawing& drawing)
{
    if (drawing.pictures.empty() && drawing.failures.empty())
        return;
    html_ += "<section>\n" + Element("h2", "Pictures");
    int number = 0;
    for (const DrawnPicture& drawn : drawing.pictures)
        html_ += HtmlFigure(drawn, ++number);
    for (const std::string& failure : drawing.failures)
        html_ += Element("p", failure);
    html_ += "</section>\n";
}

void Page::AddCommandLine(const std::string& line)
{
    html_ += fmt::format("<section>\n<h2>Command line</h2>\n<pre><code>{}</code></pre>\n<p>{} {}</p>\n"
                         "</section>\n",
                         HtmlEscaped(line), PROGRAM_NAME, PROGRAM_VERSION);
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
    page.AddHead(report.title);
    for (const ReportSection& section : report.sections)
        page.AddSection(section);
    page.AddPictures(drawing);
    page.AddSection(SettingsSection(options));
    page.AddCommandLine(CommandLine(options));
    return page.Finished();
}

} // namespace host
