#include "host/report/HtmlTable.h"

#include "host/report/AnalysisData.h"
#include "host/report/HtmlTexts.h"
#include "host/report/ShownRows.h"

#include <fmt/format.h>

#include <cstddef>

namespace host {

namespace {

std::string HeaderCell(const ReportColumn& column)
{
    if (column.header.empty())
        return "<td></td>";
    return fmt::format("<th scope=\"col\"{}>{}</th>", column.isText ? " class=\"text\"" : "",
                       HtmlEscaped(column.header));
}

std::string Cell(const ReportColumn& column, std::size_t row, bool isFirst)
{
    if (!column.isText)
        return fmt::format("<td>{}</td>", HtmlNumber(column.cells[row]));
    const std::string text = HtmlText(column.cells[row]);
    return isFirst ? fmt::format("<th scope=\"row\" class=\"text\">{}</th>", text)
                   : fmt::format("<td class=\"text\">{}</td>", text);
}

/// The row of all studies stays below the others when a reader sorts them.
bool IsPooled(const std::vector<ReportColumn>& table, std::size_t row)
{
    return table.front().header.empty() && table.front().cells[row] == OVERALL;
}

std::string TableBody(const std::vector<ReportColumn>& table)
{
    std::string body;
    for (std::size_t row = 0; row < ShownRowsOf(table); ++row) {
        body += IsPooled(table, row) ? "<tr class=\"pooled\">" : "<tr>";
        for (const ReportColumn& column : table)
            body += Cell(column, row, &column == &table.front());
        body += "</tr>\n";
    }
    return body;
}

} // namespace

std::string HtmlTable(const std::string& caption, const std::vector<ReportColumn>& table)
{
    std::string headers;
    for (const ReportColumn& column : table)
        headers += HeaderCell(column);
    std::string html =
        fmt::format("<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"{0}\">\n<table>\n"
                    "<caption>{0}</caption>\n<thead><tr>{1}</tr></thead>\n<tbody>\n{2}</tbody>\n"
                    "</table>\n</div>\n",
                    HtmlEscaped(caption), headers, TableBody(table));
    if (const std::string sentence = SentenceOfRowsNotShown(table); !sentence.empty())
        html += fmt::format("<p>{}</p>\n", HtmlEscaped(sentence));
    return html;
}

} // namespace host
