#include "host/report/TextReport.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace host {

namespace {

/// The number of code points of a UTF-8 text: all bytes but the continuation bytes.
std::size_t WidthOf(std::string_view text)
{
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

/// The texts of a column, header first, all of one width.
std::vector<std::string> PaddedTexts(const ReportColumn& column)
{
    std::vector<std::string> texts = column.cells;
    texts.insert(texts.begin(), column.header);
    std::size_t width = 0;
    for (const std::string& text : texts)
        width = std::max(width, WidthOf(text));
    for (std::string& text : texts)
        text.insert(column.isText ? text.size() : 0, width - WidthOf(text), ' ');
    return texts;
}

std::string RenderTable(const std::vector<ReportColumn>& table)
{
    std::vector<std::string> lines;
    for (const ReportColumn& column : table) {
        const std::vector<std::string> texts = PaddedTexts(column);
        lines.resize(texts.size());
        for (std::size_t i = 0; i < texts.size(); ++i)
            lines[i] += (lines[i].empty() ? "" : "  ") + texts[i];
    }
    std::string text;
    for (const std::string& line : lines) // without the padding of a last column of texts
        text.append(line, 0, line.find_last_not_of(' ') + 1).append("\n");
    return text;
}

} // namespace

std::string RenderText(const Report& report)
{
    std::string text = report.title + '\n';
    for (const ReportSection& section : report.sections) {
        text += '\n' + section.title + '\n' + RenderTable(section.table);
        for (const std::string& sentence : section.sentences)
            text += sentence + '\n';
        text += section.verbatim;
    }
    return text;
}

} // namespace host
