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
    const DataTable table = DataTable::Parse("x\n-1.5e-3\n+2\n\" 7 \"\n.5\nNA\n.\n\" \"\nn/a\nNaN\n"
                                             "\u22123\n\u00A04\u202F\n\u20130.5\n"
                                             "0.1000000000000000055511151231257827\n1e308\n",
                                             "t.csv");
    std::vector<double> numbers;
    for (std::size_t row = 0; row < table.RowCount(); ++row)
        numbers.push_back(table.Number(row, 0));
    EXPECT_TRUE(Same(
        numbers, {-1.5e-3, 2, 7, 0.5, missing, missing, missing, missing, missing, -3, 4, -0.5, 0.1, 1e308}));
}

TEST(DataTable, NamesTheLineAndTheColumnOfAFieldThatIsNoNumber)
{
    const char* const texts[] = {
        "abc", "1,5",    "1.5x",  "1 2",   "0x10",  "--1",    "+-1",
        "1e",  "-",      "inf",   "-nan",  "1e999", "1e-999", "-1.7976931348623157e308",
        "12%", "<0.001", "1 234", "1,234", "#N/A",  "0,5"};
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
        {"Table 1\na,b\n1,2\n", "t.csv, line 2: 2 fields, but the header has 1: 'Table 1' is taken for it"},
        {"a,b\n\"1\n\n\",2\n\n1,2,3\n", "t.csv, line 6: 3 fields, but the header has 2"},
        {"a,b\n\"1\n2\",\"3\n4,5\n", "t.csv, line 3: the quoted field that starts here is never closed"},
        {"a,b\n1,5\" tall\n", "t.csv, line 2: a misplaced double quote"},
        {"a,b\n1,\"x\"y\n", "t.csv, line 2: a misplaced double quote"},
        {std::string("a,b\n1,\0\n", 8), "t.csv, line 2: a byte of value 0"},
        {"PK\x03\x04-----[Content_Types].xml---xl/workbook.xml",
         "t.csv is an Excel workbook (.xlsx): open it"},
        {"PK\x03\x04mimetypeapplication/vnd.oasis.opendocument.spreadsheet",
         "t.csv is an OpenDocument sheet"},
        {"\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1", "t.csv is an Excel workbook (.xls)"},
        {"[{\"effect\": 1}]", "t.csv is a JSON file"},
        {"$FL2@(#) SPSS DATA FILE", "t.csv is a data file of SPSS"},
        {"<stata_dta><header>", "t.csv is a data set of Stata"},
        {std::string("r\x02\x01\0", 4), "t.csv is a data set of Stata"},
        {std::string("X\n\0\0\0\x03", 6), "t.csv is an R object (.rds): write it by R"},
        {"%PDF-1.7", "t.csv is a PDF document"},
        {"\n <!DOCTYPE HTML><table>", "t.csv is a web page"},
        {"a,b\n\x81\x8d,1\n", "t.csv is no text in UTF-8, and none in Windows-1252"},
        {"a;b\n1,234;0\n",
         "t.csv, line 2, column 'a': '1,234' is not a number with the decimal point: --decimal "},
        {"a;b\n1.234;0,5\n", "t.csv, line 2, column 'a': '1.234' is not a number with the decimal comma: "},
        {"a;b\n1.234,5;0\n",
         "t.csv, line 2, column 'a': '1.234,5' is not a number that can be read: its thous"},
    };
    for (const auto& one : cases)
        EXPECT_THAT(MessageOf([&] { DataTable::Parse(one.text, "t.csv").Number(0, 0); }),
                    testing::StartsWith(one.message));
}

/// Each character in two bytes, the lower one first.
std::string Utf16(const std::string& ascii, const std::string& mark)
{
    std::string text = mark;
    for (const char c : ascii)
        text += std::string(1, c) + '\0';
    return text;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

TEST(DataTable, ReadsTheSameFromTheFilesOfManyPrograms)
{
    const std::string plain = "name|x|n\nM\u00FCller|-0.5|1200\nNo\u00EBl, P.|NA|7\n";
    const auto written = [&](const std::string& separator) { return Replaced(plain, "|", separator); };
    const auto semicolons = Replaced(Replaced(plain, "0.5", "0,5"), "|", ";");
    const auto ascii = [](const std::string& text) {
        return Replaced(Replaced(text, "\u00FC", "u"), "\u00EB", "e");
    };
    const std::string quoted = Replaced(written(","), "No\u00EBl, P.", "\"No\u00EBl, P.\"");
    const std::string latin = Replaced(Replaced(semicolons, "\u00FC", "\xFC"), "\u00EB", "\xEB");
    const std::string mac = Replaced(Replaced(latin, "\xFC", "\x9F"), "\xEB", "\x91");
    const struct
    {
        const char* what;
        std::string bytes;
        bool isAscii;
        std::size_t noteCount;
        host::FileFormat format = {};
    } cases[] = {
        {"commas, UTF-8", quoted, false, 0},
        {"byte-order mark and sep= of Excel", "\xEF\xBB\xBFsep=;\r\n" + Replaced(semicolons, "\n", "\r\n"),
         false, 0},
        {"tabs", written("\t"), false, 0},
        {"UTF-16 of Excel", Utf16(ascii(Replaced(semicolons, ";", "\t")), "\xFF\xFE"), true, 1},
        {"UTF-16 without mark", Utf16(ascii(semicolons), ""), true, 1},
        {"Latin-1", latin, false, 1},
        {"old Mac", Replaced(mac, "\n", "\r"), false, 1},
        {"old Mac with a line feed in quotes",
         Replaced(Replaced(Replaced(mac, "\n", ";\r"), ";n;", ";n;m"), ";7;", ";7;\"two\nlines\""), false, 1},
        {"empty cells around the table", Replaced(quoted, "7\n", "7,,\n,,,,\n,,\n"), false, 1},
        {"options", Replaced(semicolons, "NA", "-99,0"), false, 0, {';', ',', {"x", "-99"}}},
    };
    for (const auto& one : cases) {
        const DataTable table = DataTable::Parse(one.bytes, "t.csv", one.format);
        EXPECT_EQ(table.Notes().size(), one.noteCount) << one.what;
        ASSERT_EQ(table.RowCount(), 2U) << one.what;
        const std::string names = std::string(table.Text(0, 0)) + "|" + std::string(table.Text(1, 0));
        EXPECT_EQ(names, one.isAscii ? "Muller|Noel, P." : "M\u00FCller|No\u00EBl, P.") << one.what;
        const std::size_t x = table.PositionOf("x");
        EXPECT_TRUE(Same({table.Number(0, x), table.Number(1, x), table.Number(0, 2), table.Number(1, 2)},
                         {-0.5, missing, 1200, 7}))
            << one.what;
    }
}

TEST(DataTable, NotesWhatItGuesses)
{
    const std::string point = "a;b\n1.234;5\n";
    EXPECT_THAT(DataTable::Parse(point, "t.csv").Notes(),
                testing::ElementsAre(testing::HasSubstr("'1.234' (line 2 of the data file, column 'a')")));
    EXPECT_EQ(DataTable::Parse(point, "t.csv").Number(0, 0), 1.234);
    EXPECT_THAT(DataTable::Parse("a;b\n1.234;0.5\n", "t.csv").Notes(), testing::IsEmpty());
    const struct
    {
        const char* rows; ///< of a, which is read as numbers, and b
        const char* note; ///< empty for none
        double first;     ///< missing for one that is refused
    } cases[] = {
        {"0,5;1.5", "", 0.5},            // labels with points
        {"0,5;A.5\n-;x", "", 0.5},       // a missing value that is not known
        {"6.504;1.5", "'1.5' (", 6.504}, // labels, or numbers
        {"6,504;1,5", "'1,5' (", 6.504},
        {"6.504;1,5 mg", "nothing in the file", 6.504},
        {"6.504;<0,5", "nothing in the file", 6.504},
        {"6.504;5%\n.5;1,5", "", 6.504},
        {"6.504;1\n6,5;1.5", "", missing},
        {"6,504;1\n.5;2", "", missing},
        {"-1,5e3;1.5", "", -1500},
    };
    for (const auto& one : cases) {
        const std::string text = std::string("a;b\n") + one.rows + "\n";
        const DataTable table = DataTable::Parse(text, "t.csv", {{}, {}, {}, {"a"}});
        EXPECT_EQ(table.Notes().size(), *one.note == '\0' ? 0U : 1U) << one.rows;
        EXPECT_THAT(table.Notes().empty() ? "" : table.Notes()[0], testing::HasSubstr(one.note)) << one.rows;
        double first = missing;
        MessageOf([&] { first = table.Number(0, 0); });
        EXPECT_TRUE(Same({first}, {one.first})) << one.rows;
    }
    EXPECT_THAT(DataTable::Parse("a,b;c\n1,2;3\n", "t.csv").Notes(),
                testing::ElementsAre(testing::HasSubstr("several separators")));
}

TEST(DataTable, FindsColumnsByExactAndUniqueNames)
{
    const DataTable table = DataTable::Parse("a,b,a,\"two\nlines\"\n1,2,3,4\n", "t.csv");
    EXPECT_EQ(table.PositionOf("b"), 1U);
    EXPECT_EQ(table.PositionOf("two\nlines"), 3U);
    EXPECT_EQ(DataTable::Parse("a,re\u0301gion\n1,2\n", "t.csv").PositionOf("r\u00E9gion"), 1U);
    EXPECT_THAT(
        MessageOf([&] { table.PositionOf("B"); }),
        testing::StartsWith("t.csv has no column 'B'. Did you mean b? Its columns are: a, b, a, two"));
    EXPECT_EQ(MessageOf([&] { table.PositionOf("a"); }),
              "t.csv, line 1: column 1 and column 3 are both named 'a'.");
}

} // namespace
