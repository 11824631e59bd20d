#pragma once

#include "host/data/CsvReader.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The host's data: a CSV file whose header line names the columns, with a row for each record.
///
/// Fields are kept as texts, so that only the columns asked for have to hold numbers. An operation that
/// cannot read the data throws UnusableInput, which names the file and, as far as they apply, the line (as an
/// editor counts it) and the column.
class DataTable
{
public:
    static DataTable Read(const std::string& path);

    /// Reads the table from `text`. Messages call the file `name`.
    static DataTable Parse(std::string_view text, const std::string& name);

    std::size_t RowCount() const noexcept { return content_.rowLines.size() - 1; }

    /// Position of the column named `column`; throws when there is none, or more than one.
    std::size_t PositionOf(std::string_view column) const;

    /// Line of the file on which a record starts, from 1; `row` counts the records, from 0.
    std::size_t LineOf(std::size_t row) const { return content_.rowLines[row + 1]; }

    /// A field's text; `row` counts the records, from 0.
    std::string_view Text(std::size_t row, std::size_t column) const
    {
        return content_.Field(row + 1, column);
    }

    /// A field's text without the blanks around it.
    std::string_view TrimmedText(std::size_t row, std::size_t column) const;

    /// Whether a field is a missing value: empty, NA or a point.
    bool IsMissing(std::size_t row, std::size_t column) const;

    /// A field's number, or missing when the field is.
    double Number(std::size_t row, std::size_t column) const;

    /// Whether every field of the column is a number or missing.
    bool HoldsNumbers(std::size_t column) const;

private:
    DataTable(CsvContent content, std::string name);

    std::string_view NameOf(std::size_t column) const { return content_.Field(0, column); }
    std::vector<std::string> ColumnNames() const;

    CsvContent content_;
    std::string name_;
};

} // namespace host
