#pragma once

#include "host/data/CsvReader.h"
#include "host/data/DecimalMark.h"
#include "host/data/FileFormat.h"
#include "host/data/MissingTexts.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// What messages and reports call the data file: its path, or "standard input" for "-".
std::string DataName(const std::string& path);

/// The host's data: a CSV file whose header line names the columns, with a row for each record.
///
/// Fields are kept as texts, so that only the columns asked for have to hold numbers. An operation that
/// cannot read the data throws UnusableInput, which names the file and, as far as they apply, the line (as an
/// editor counts it) and the column.
class DataTable
{
public:
    /// Reads a file, or standard input for "-": text in any encoding that DecodeText() knows, which gzip may
    /// have compressed.
    static DataTable Read(const std::string& path, const FileFormat& format = {});

    /// Reads the table from the bytes of a file. Messages call the file `name`.
    static DataTable Parse(std::string_view bytes, const std::string& name, const FileFormat& format = {});

    /// A sentence for everything about the file that was converted, guessed or left out.
    const std::vector<std::string>& Notes() const noexcept { return notes_; }

    std::size_t RowCount() const noexcept { return content_.RowCount() - 1; }

    /// Position of the column named `column`; throws when there is none, or more than one.
    std::size_t PositionOf(std::string_view column) const;

    /// Line of the file on which a record starts, from 1; `row` counts the records, from 0.
    std::size_t LineOf(std::size_t row) const { return content_.LineOf(row + 1); }

    /// A field's text; `row` counts the records, from 0.
    std::string_view Text(std::size_t row, std::size_t column) const
    {
        return content_.Field(row + 1, column);
    }

    /// A field's text without the blanks around it.
    std::string_view TrimmedText(std::size_t row, std::size_t column) const;

    /// Whether a field is a missing value: empty, or one of the format's texts, in any case. A text that is a
    /// number stands for that number in any form.
    bool IsMissing(std::size_t row, std::size_t column) const;

    /// A field's number, or missing when the field is.
    double Number(std::size_t row, std::size_t column) const;

    /// Digits behind the decimal mark of a field that is a number.
    int Decimals(std::size_t row, std::size_t column) const;

    /// Whether every field of the column is a number or missing.
    bool HoldsNumbers(std::size_t column) const;

private:
    DataTable(std::string bytes, std::string name, const FileFormat& format);

    std::string_view NameOf(std::size_t column) const;
    std::vector<std::string> ColumnNames() const;
    char FindSeparator(std::string_view text);
    void RequireRows() const;
    void FindDecimalMark();
    std::vector<bool> AreRead() const;
    std::string PlaceOf(const DecimalCensus::Place& place) const;

    std::string name_;
    FileFormat format_;
    std::vector<std::string> notes_;
    CsvContent content_;
    char decimalMark_ = '.';
    MissingTexts missing_;
};

} // namespace host
