#include "host/report/TextReport.h"

#include "host/text/PlainText.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <string_view>
#include <vector>

namespace host {

namespace {

std::size_t WidthOf(const ReportColumn& column)
{
    std::size_t width = DisplayWidth(column.header);
    for (std::size_t row = 0; row < column.cells.size(); ++row)
        width = std::max(width, DisplayWidth(column.cells.View(row)));
    return width;
}

/// Appends tables to a text line by line, so that a long one takes no memory beside its text.
class TableWriter
{
public:
    TableWriter(const std::vector<ReportColumn>& table, std::string& text) : table_(table), text_(text)
    {
        for (const ReportColumn& column : table)
            widths_.push_back(WidthOf(column));
    }

    void Write()
    {
        if (table_.empty())
            return;
        const std::size_t rows = table_.front().cells.size();
        Reserve(rows + 1);
        WriteLine([](const ReportColumn& column) { return std::string_view(column.header); });
        for (std::size_t row = 0; row < rows; ++row)
            WriteLine([row](const ReportColumn& column) { return column.cells.View(row); });
    }

private:
    /// Letters beyond ASCII take more bytes than their width, so that this is no bound.
    void Reserve(std::size_t lines)
    {
        const std::size_t width = std::accumulate(widths_.begin(), widths_.end(), 2 * widths_.size());
        text_.reserve(text_.size() + lines * width);
    }

    template <class TextOf>
    void WriteLine(const TextOf& textOf)
    {
        const std::size_t start = text_.size();
        for (std::size_t i = 0; i < table_.size(); ++i)
            WriteCell(textOf(table_[i]), i, start);
        // Without the padding of a last column of texts.
        const std::size_t last = text_.find_last_not_of(' ');
        text_.resize(last == std::string::npos ? start : std::max(last + 1, start));
        text_ += '\n';
    }

    void WriteCell(std::string_view text, std::size_t column, std::size_t lineStart)
    {
        const std::size_t padding = widths_[column] - DisplayWidth(text);
        text_.append(text_.size() == lineStart ? 0 : 2, ' ');
        text_.append(table_[column].isText ? 0 : padding, ' ').append(text);
        text_.append(table_[column].isText ? padding : 0, ' ');
    }

    const std::vector<ReportColumn>& table_;
    std::string& text_;
    std::vector<std::size_t> widths_;
};

} // namespace

std::string RenderText(const Report& report)
{
    std::string text = report.title + '\n';
    for (const ReportSection& section : report.sections) {
        text += '\n' + section.title + '\n';
        TableWriter(section.table, text).Write();
        for (const std::string& sentence : section.sentences)
            text += sentence + '\n';
        text += section.verbatim;
    }
    return text;
}

} // namespace host
