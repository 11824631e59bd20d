#include "faults/CsvChecks.h"

#include "host/CsvReader.h"
#include "host/DataTable.h"
#include "host/UnusableInput.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace {

/// The content as CSV text, every field in quotes.
std::string Written(const host::CsvContent& content)
{
    std::string text;
    for (std::size_t row = 0; row < content.rowLines.size(); ++row) {
        for (std::size_t column = 0; column < content.columnCount; ++column) {
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
    for (std::size_t row = 0; row < content.rowLines.size(); ++row) {
        for (std::size_t column = 0; column < content.columnCount; ++column)
            fields.emplace_back(content.Field(row, column));
    }
    return fields;
}

class CsvCheck
{
public:
    explicit CsvCheck(std::string_view text) : text_(text), content_(host::ReadCsv(text, "data")) {}

    void CheckContent();
    void CheckTable();

private:
    std::string_view text_;
    host::CsvContent content_;
};

void CsvCheck::CheckContent()
{
    const std::vector<std::size_t>& lines = content_.rowLines;
    EXPECT_TRUE(content_.ends.size() == lines.size() * content_.columnCount) << "every row has its fields";
    EXPECT_TRUE(std::is_sorted(content_.ends.begin(), content_.ends.end())) << "fields follow one another";
    EXPECT_TRUE(std::adjacent_find(lines.begin(), lines.end(), std::greater_equal<>()) == lines.end()) << "lines ascend";
    const auto lineCount = static_cast<std::size_t>(std::count(text_.begin(), text_.end(), '\n') +
                                                    std::count(text_.begin(), text_.end(), '\r') + 1);
    for (std::size_t row = 0; row < lines.size(); ++row)
        EXPECT_TRUE(content_.LineOf(row, content_.columnCount - 1) <= lineCount) << "a field starts on a line of the file";
    EXPECT_TRUE(FieldsOf(host::ReadCsv(Written(content_), "written")) == FieldsOf(content_)) << "written and read is the same";
}

void CsvCheck::CheckTable()
{
    const host::DataTable table = host::DataTable::Parse(text_, "data");
    for (std::size_t column = 0; column < content_.columnCount; ++column) {
        const bool holdsNumbers = table.HoldsNumbers(column);
        for (std::size_t row = 0; row < table.RowCount(); ++row) {
            try {
                const double number = table.Number(row, column);
                EXPECT_TRUE(std::isfinite(number)) << "a number is finite";
                EXPECT_TRUE(KXMV::IsMissing(number) == table.IsMissing(row, column)) << "no number counts as missing";
            } catch (const host::UnusableInput&) {
                EXPECT_TRUE(!holdsNumbers) << "a column of numbers has a number in every row";
            }
        }
        try {
            EXPECT_TRUE(table.PositionOf(content_.Field(0, column)) == column) << "a column is found by its name";
        } catch (const host::UnusableInput&) {
            continue; // of two columns of that name
        }
    }
}

} // namespace

void CheckCsv(const Bytes& bytes)
{
    const std::string text(bytes.begin(), bytes.end());
    try {
        CsvCheck check(text);
        check.CheckContent();
        check.CheckTable();
    } catch (const host::UnusableInput&) {
        return;
    }
}
