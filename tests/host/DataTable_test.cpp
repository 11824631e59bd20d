#include "host/data/DataTable.h"
#include "host/text/UnusableInput.h"
#include "support/Compare.h"

#include <gmock/gmock.h>

#include <functional>

using host::DataTable;
using host::UnusableInput;

namespace {

using Fields = std::vector<std::string>;

std::string MessageOf(const std::function<void()>& operation)
{
    try {
        operation();
    } catch (const UnusableInput& problem) {
        return problem.what();
    }
    return "(nothing thrown)";
}

TEST(DataTable, ReadsTheFieldsOfEachDialect)
{
    const struct
    {
        const char* what;
        std::string text;
        std::vector<Fields> rows; ///< of the columns a and b
    } cases[] = {
        {"no line end at the end", "a,b\n1,2", {{"1", "2"}}},
        {"CRLF", "a,b\r\n1,2\r\n", {{"1", "2"}}},
        {"CR", "a,b\r1,2\r3,4", {{"1", "2"}, {"3", "4"}}},
        {"byte-order mark", "\xEF\xBB\xBF\x61,b\n1,2\n", {{"1", "2"}}},
        {"empty lines", "\n a , b \n\n1,2\n \t\r\n\n3,4\n\n", {{"1", "2"}, {"3", "4"}}},
        {"empty fields", "a,b\n,\n1,\n", {{"", ""}, {"1", ""}}},
        {"quotes",
         "\"a\",\"b\"\n\"x, y\",\"say \"\"z\"\"\"\n\"two\nlines\",\"\"\n",
         {{"x, y", "say \"z\""}, {"two\nlines", ""}}},
        {"columns in another order", "b,c,a\n2,0,1\n", {{"1", "2"}}},
    };
    for (const auto& one : cases) {
        const DataTable table = DataTable::Parse(one.text, "t.csv");
        std::vector<Fields> rows;
        for (std::size_t row = 0; row < table.RowCount(); ++row) {
            rows.emplace_back();
            for (const char* const column : {"a", "b"})
                rows.back().emplace_back(table.Text(row, table.PositionOf(column)));
        }
        EXPECT_EQ(rows, one.rows) << one.what;
    }
}

TEST(DataTable, ReadsNumbersInAnyLocale)
{
    const DataTable table = DataTable::Parse("x\n-1.5e-3\n+2\n\" 7 \"\n.5\nNA\n.\n\" \"\n"
                                             "0.1000000000000000055511151231257827\n1e308\n",
                                             "t.csv");
    std::vector<double> numbers;
    for (std::size_t row = 0; row < table.RowCount(); ++row)
        numbers.push_back(table.Number(row, 0));
    EXPECT_TRUE(Same(numbers, {-1.5e-3, 2, 7, 0.5, missing, missing, missing, 0.1, 1e308}));
}

TEST(DataTable, NamesTheLineAndTheColumnOfAFieldThatIsNoNumber)
{
    const char* const texts[] = {"abc", "1,5", "1.5x", "1 2",  "0x10",  "--1",    "+-1",
                                 "1e",  "-",   "inf",  "-nan", "1e999", "1e-999", "-1.7976931348623157e308",
                                 "N/A"};
    for (const std::string text : texts) {
        const DataTable table =
            DataTable::Parse("label,x\n\"a\r\nb\r\nc\",1\n\n\"d\ne\",\"" + text + "\"\n", "t.csv");
        EXPECT_EQ(table.Number(0, 1), 1);
        EXPECT_THAT(MessageOf([&] { table.Number(1, 1); }),
                    testing::StartsWith("t.csv, line 7, column 'x': '" + text + "' is "));
    }
}

TEST(DataTable, NamesTheLineThatCannotBeRead)
{
    const struct
    {
        std::string text;
        const char* message;
    } cases[] = {
        {"", "t.csv is empty"},
        {"\xEF\xBB\xBF\n\n", "t.csv is empty"},
        {"a,b\n", "t.csv has a header line and no data rows"},
        {"a,b\n1,2\n1\n", "t.csv, line 3: 1 field, but the header has 2"},
        {"a,b\n\"1\n\n\",2\n\n1,2,3\n", "t.csv, line 6: 3 fields, but the header has 2"},
        {"a,b\n\"1\n2\",\"3\n4,5\n", "t.csv, line 3: the quoted field that starts here is never closed"},
        {"a,b\n1,5\" tall\n", "t.csv, line 2: a misplaced double quote"},
        {"a,b\n1,\"x\"y\n", "t.csv, line 2: a misplaced double quote"},
        {std::string("a,b\n1,\0\n", 8), "t.csv, line 2: a byte of value 0"},
    };
    for (const auto& one : cases)
        EXPECT_THAT(MessageOf([&] { DataTable::Parse(one.text, "t.csv"); }),
                    testing::StartsWith(one.message));
}

TEST(DataTable, FindsColumnsByExactAndUniqueNames)
{
    const DataTable table = DataTable::Parse("a,b,a,\"two\nlines\"\n1,2,3,4\n", "t.csv");
    EXPECT_EQ(table.PositionOf("b"), 1U);
    EXPECT_EQ(table.PositionOf("two\nlines"), 3U);
    EXPECT_THAT(
        MessageOf([&] { table.PositionOf("B"); }),
        testing::StartsWith("t.csv has no column 'B'. Did you mean b? Its columns are: a, b, a, two"));
    EXPECT_EQ(MessageOf([&] { table.PositionOf("a"); }),
              "t.csv, line 1: column 1 and column 3 are both named 'a'.");
}

} // namespace
