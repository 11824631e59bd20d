#include "faults/CsvChecks.h"

#include "host/data/CsvReader.h"
#include "host/data/DataTable.h"
#include "host/text/UnusableInput.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>

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

void CheckContent(const host::CsvContent& content)
{
    const std::vector<std::size_t>& lines = content.rowLines;
    EXPECT_EQ(content.ends.size(), lines.size() * content.columnCount) << "every row has its fields";
    EXPECT_TRUE(std::is_sorted(content.ends.begin(), content.ends.end())) << "fields follow one another";
    EXPECT_EQ(std::adjacent_find(lines.begin(), lines.end(), std::greater_equal<>()), lines.end());
    EXPECT_EQ(FieldsOf(host::ReadCsv(Written(content), "written")), FieldsOf(content));
}

void CheckTable(const host::DataTable& table, std::size_t columnCount)
{
    for (std::size_t column = 0; column < columnCount; ++column) {
        for (std::size_t row = 0; table.HoldsNumbers(column) && row < table.RowCount(); ++row) {
            const double number = table.Number(row, column);
            EXPECT_TRUE(std::isfinite(number));
            EXPECT_EQ(KXMV::IsMissing(number), table.IsMissing(row, column));
        }
    }
}

} // namespace

void CheckCsv(const Bytes& bytes)
{
    const std::string text(bytes.begin(), bytes.end());
    try {
        const host::CsvContent content = host::ReadCsv(text, "data");
        CheckContent(content);
        CheckTable(host::DataTable::Parse(text, "data"), content.columnCount);
    } catch (const host::UnusableInput&) {
        return;
    }
}
