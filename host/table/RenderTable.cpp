#include "host/table/RenderTable.h"

#include "host/table/TableTexts.h"
#include "host/text/NumberText.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <utility>

namespace host {

namespace {

constexpr const char* END_OF_RECORD = "\r\n";

std::string NumberOf(const StudyTable::Numbers& column, std::size_t row)
{
    const double value = column.cells[row];
    if (!HasValue(value))
        return {};
    return column.decimals < 0 ? fmt::format("{}", value) : FixedText(value, column.decimals);
}

std::string RenderCsv(const StudyTable& table)
{
    std::vector<std::string> fields;
    for (const StudyTable::Texts& column : table.texts)
        fields.push_back(CsvField(column.header));
    for (const StudyTable::Numbers& column : table.numbers)
        fields.push_back(CsvField(column.header));
    std::string text = fmt::format("{}{}", fmt::join(fields, ","), END_OF_RECORD);
    for (std::size_t row = 0; row < table.texts.front().cells.size(); ++row) {
        fields.clear();
        for (const StudyTable::Texts& column : table.texts)
            fields.push_back(CsvField(column.cells[row]));
        for (const StudyTable::Numbers& column : table.numbers)
            fields.push_back(NumberOf(column, row));
        text += fmt::format("{}{}", fmt::join(fields, ","), END_OF_RECORD);
    }
    return text;
}

std::string Trimmed(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

using CellText = std::string (*)(const std::string&);

/// The cells of a row, or the headers where `row` is none of them.
std::string JoinedRow(const std::vector<ReportColumn>& columns, const std::size_t* row, CellText ofText,
                      CellText ofNumber, const char* separator)
{
    std::vector<std::string> cells;
    for (const ReportColumn& column : columns) {
        const std::string& cell = row == nullptr ? column.header : column.cells[*row];
        cells.push_back(row == nullptr || column.isText ? ofText(cell) : ofNumber(Trimmed(cell)));
    }
    return fmt::format("{}", fmt::join(cells, separator));
}

std::string RenderMarkdown(const std::vector<ReportColumn>& columns)
{
    std::string text =
        fmt::format("| {} |\n|", JoinedRow(columns, nullptr, MarkdownText, MarkdownText, " | "));
    for (const ReportColumn& column : columns)
        text += column.isText ? " :--- |" : " ---: |";
    text += '\n';
    for (std::size_t row = 0; row < columns.front().cells.size(); ++row)
        text += fmt::format("| {} |\n", JoinedRow(columns, &row, MarkdownText, MarkdownText, " | "));
    return text;
}

std::string RenderLatex(const std::vector<ReportColumn>& columns)
{
    std::string alignment;
    for (const ReportColumn& column : columns)
        alignment += column.isText ? 'l' : 'r';
    std::string text =
        fmt::format("% needs \\usepackage{{booktabs}}\n\\begin{{tabular}}{{{}}}\n\\toprule\n{} "
                    "\\\\\n\\midrule\n",
                    alignment, JoinedRow(columns, nullptr, LatexText, LatexText, " & "));
    for (std::size_t row = 0; row < columns.front().cells.size(); ++row)
        text += JoinedRow(columns, &row, LatexText, LatexNumber, " & ") + " \\\\\n";
    return text + "\\bottomrule\n\\end{tabular}\n";
}

} // namespace

std::string RenderTable(const StudyTable& table, TableKind kind)
{
    switch (kind) {
    case TableKind::CSV:
        return RenderCsv(table);
    case TableKind::MARKDOWN:
        return RenderMarkdown(table.reading);
    case TableKind::LATEX:
        return RenderLatex(table.reading);
    }
    return {};
}

} // namespace host
