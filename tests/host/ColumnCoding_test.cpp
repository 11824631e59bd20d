#include "host/data/ColumnCoding.h"
#include "support/Compare.h"

using namespace host;

namespace {

TEST(ColumnCoding, NumbersTheLevelsInAscendingOrder)
{
    const struct
    {
        const char* description;
        std::string fields; ///< one a line
        std::vector<std::string> levels;
        std::vector<double> codes;
    } cases[] = {
        {"texts", "b\na\nB\nb\n", {"B", "a", "b"}, {2, 1, 0, 2}},
        {"numbers, however written", "10\n9\n1e1\n-1\n+9.0\n", {"-1", "9", "10"}, {2, 1, 2, 0, 1}},
        {"missing values", "2\nNA\n.\n1\n\" \"\n", {"1", "2"}, {1, missing, missing, 0, missing}},
        {"one text makes all texts", "10\n9\nx\n", {"10", "9", "x"}, {0, 1, 2}},
        {"blanks around", "\" a\"\na\n\"a \"\n", {"a"}, {0, 0, 0}},
        {"no values", "NA\n.\n", {}, {missing, missing}},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.description);
        const ColumnCoding coding = CodeColumn(DataTable::Parse("x\n" + one.fields, "t.csv"), 0);
        EXPECT_EQ(coding.levels, one.levels);
        EXPECT_TRUE(Same(coding.codes, one.codes));
    }
}

} // namespace
