#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The fields of a CSV file as texts. Row 0 is the header; every row has `columnCount` fields.
struct CsvContent
{
    std::size_t columnCount = 0;
    std::string text;                  ///< all fields, one behind the other, row after row
    std::vector<std::size_t> ends;     ///< of each field in `text`
    std::vector<std::size_t> rowLines; ///< line of the file on which a row starts, from 1

    std::string_view Field(std::size_t row, std::size_t column) const;

    /// Line of the file on which a field starts.
    std::size_t LineOf(std::size_t row, std::size_t column) const;
};

/// Reads CSV text: fields are separated by commas; a field in double quotes may hold commas, line breaks and,
/// written twice, double quotes. Lines end in LF, CRLF or CR; empty ones are skipped, and so is a UTF-8
/// byte-order mark. Messages call the file `name`. Throws UnusableInput with name and line.
CsvContent ReadCsv(std::string_view text, const std::string& name);

} // namespace host
