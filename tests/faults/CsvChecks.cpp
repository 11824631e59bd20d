#include "faults/CsvChecks.h"

#include "host/data/CsvReader.h"
#include "host/data/DataTable.h"
#include "host/data/FieldValue.h"
#include "host/text/UnusableInput.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace {

/// The content as CSV text, every field in quotes.
std::string Written(const host::CsvContent& content)
{
    std::string text;
    for (std::size_t row = 0; row < content.RowCount(); ++row) {
        for (std::size_t column = 0; column < content.ColumnCount(); ++column) {
            text += column == 0 ? "\"" : ",\"";
            for (const char c : content.Field(row, column))
                text += c == '"' ? std::string("\"\"") : std::string(1, c);
            text += '"';
        }
        text += '\n';
    }
    return text;
}

std::vector<std::string> FieldsOf(const host::CsvContent& content)
{
    std::vector<std::string> fields;
    for (std::size_t row = 0; row < content.RowCount(); ++row) {
        for (std::size_t column = 0; column < content.ColumnCount(); ++column)
            fields.emplace_back(content.Field(row, column));
    }
    return fields;
}

/// Written anew with all fields in quotes, the text goes through the parser alone.
void CheckContent(const host::CsvContent& content)
{
    for (std::size_t row = 1; row < content.RowCount(); ++row)
        EXPECT_LT(content.LineOf(row - 1), content.LineOf(row));
    EXPECT_EQ(FieldsOf(host::ReadCsv(Written(content), "written", ',')), FieldsOf(content));
}

/// A number is the same in the forms that a spreadsheet gives it.
void CheckNumber(const host::DataTable& table, std::size_t row, std::size_t column)
{
    const double number = table.Number(row, column);
    EXPECT_TRUE(std::isfinite(number));
    EXPECT_EQ(KXMV::IsMissing(number), table.IsMissing(row, column));
    EXPECT_TRUE(table.Decimals(row, column) >= 0);
    double plain = 0;
    if (host::ParsePlainNumber(table.TrimmedText(row, column), plain)) {
        EXPECT_EQ(number, plain);
    }
}

void CheckTable(const host::DataTable& table, std::size_t columnCount)
{
    for (std::size_t column = 0; column < columnCount; ++column) {
        const bool holdsNumbers = table.HoldsNumbers(column);
        for (std::size_t row = 0; holdsNumbers && row < table.RowCount(); ++row)
            CheckNumber(table, row, column);
    }
}

void CheckFormat(const std::string& text, const host::FileFormat& format)
{
    try {
        const host::CsvContent content = host::ReadCsv(text, "data", format.separator.value_or(','));
        CheckContent(content);
        const host::DataTable table = host::DataTable::Parse(text, "data", format);
        if (format.separator && table.Notes().empty()) // the text is UTF-8 as it is
            CheckTable(table, content.ColumnCount());
    } catch (const host::UnusableInput&) {
        return;
    }
}

} // namespace

void CheckCsv(const Bytes& bytes)
{
    const std::string text(bytes.begin(), bytes.end());
    CheckFormat(text, {});
    for (const char separator : {',', ';', '\t'})
        for (const char decimalMark : {'.', ','})
            CheckFormat(text, {separator, decimalMark});
}
