#include "host/table/RenderTable.h"

#include "host/table/LatexTexts.h"
#include "host/table/TableTexts.h"
#include "host/text/NumberFormat.h"

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
    return column.decimals ? NumberFormat{column.decimals}(value) : fmt::format("{}", value);
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

/// A number, or an estimate with its interval, without the blanks that align it in a report.
std::string Unaligned(const std::string& text)
{
    std::string unaligned;
    for (const char c : text)
        if (c != ' ' || (!unaligned.empty() && unaligned.back() != ' ' && unaligned.back() != '['))
            unaligned += c;
    return unaligned;
}

using CellText = std::string (*)(const std::string&);

/// The cells of a row, or the headers where `row` is none of them.
std::string JoinedRow(const std::vector<ReportColumn>& columns, const std::size_t* row, CellText ofText,
                      CellText ofNumber, const char* separator)
{
    std::vector<std::string> cells;
    for (const ReportColumn& column : columns) {
        const std::string& cell = row == nullptr ? column.header : column.cells[*row];
        cells.push_back(row == nullptr || column.isText ? ofText(cell) : ofNumber(Unaligned(cell)));
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

/// A cell over all columns, whose text runs on in further lines; the column of groups comes first.
std::string LatexSentence(const std::vector<ReportColumn>& columns, std::size_t row)
{
    std::string sentence = columns.front().cells[row];
    for (std::size_t i = 1; i < columns.size(); ++i)
        if (columns[i].isText && !columns[i].cells.View(row).empty())
            sentence = fmt::format("{}: {}", columns[i].cells.View(row), sentence);
    return fmt::format("\\multicolumn{{{}}}{{@{{}}p{{\\linewidth}}@{{}}}}{{{}}}", columns.size(),
                       LatexText(sentence));
}

std::string RenderLatex(const StudyTable& table)
{
    const std::vector<ReportColumn>& columns = table.reading;
    std::string alignment;
    for (const ReportColumn& column : columns)
        alignment += column.isText ? 'l' : 'r';
    std::string text = fmt::format("\\begin{{tabular}}{{{}}}\n\\toprule\n{} \\\\\n\\midrule\n", alignment,
                                   JoinedRow(columns, nullptr, LatexText, LatexText, " & "));
    for (std::size_t row = 0; row < columns.front().cells.size(); ++row)
        text += (table.isSentence[row] ? LatexSentence(columns, row)
                                       : JoinedRow(columns, &row, LatexText, LatexNumber, " & ")) +
                " \\\\\n";
    return LatexNeeds(text) + text + "\\bottomrule\n\\end{tabular}\n";
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
        return RenderLatex(table);
    }
    return {};
}

} // namespace host
