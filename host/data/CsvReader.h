#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

/// The fields of a CSV file as texts. Row 0 is the header; every row has `columnCount` fields. A large file
/// takes little more memory than its text.
class CsvContent
{
public:
    std::size_t ColumnCount() const { return columnCount_; }
    std::size_t RowCount() const { return rowStarts_.size(); } ///< with the header
    std::size_t EmptyRows() const { return emptyRows_; }       ///< without any value, left out at the end

    std::string_view Field(std::size_t row, std::size_t column) const;

    /// Line of the file on which a row starts, from 1.
    std::size_t LineOf(std::size_t row) const;
    /// Line of the file on which a field starts.
    std::size_t LineOf(std::size_t row, std::size_t column) const;

private:
    friend class CsvReader;

    /// A row that does not start on the line behind the start of the row before.
    struct LineStep
    {
        std::size_t row;
        std::size_t line;
    };

    std::size_t columnCount_ = 0;
    std::string text_;                     ///< the fields, one behind the other, row after row
    std::vector<std::size_t> rowStarts_;   ///< in `text_`
    std::vector<std::uint32_t> fieldEnds_; ///< of each field, from the start of its row
    std::vector<LineStep> lineSteps_;      ///< by row; the header has one
    std::size_t emptyRows_ = 0;
};

/// Reads CSV text in UTF-8: fields are separated by `separator`; a field in double quotes may hold
/// separators, line breaks and, written twice, double quotes. Lines end in LF, CRLF or CR; empty ones are
/// skipped, and so is a first line "sep=;", which Excel writes and `SeparatorLine` finds. Empty fields beyond
/// the header's columns are left out, as are rows without any value at the end. Messages call the file
/// `name`. Throws UnusableInput with name and line.
CsvContent ReadCsv(std::string text, const std::string& name, char separator);

} // namespace host
