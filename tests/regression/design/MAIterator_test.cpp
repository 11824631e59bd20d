#include "support/Compare.h"
#include "support/Data.h"

#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/regression/design/MAIterator.h"

using MA_NAMESPACE::MAIterator;

namespace {

KXVarList HostVariables()
{
    KXVarList variables;
    variables.AddCatVar("region", "Region");
    variables.AddContVar("year", "Year");
    return variables;
}

Rows ReadAll(MAIterator& iterator)
{
    Rows rows;
    while (const Record* record = iterator.Next()) {
        EXPECT_EQ(record->Size(), 4U);
        rows.push_back({record->Get(0), record->Get(1), record->Get(2), record->Get(3)});
    }
    return rows;
}

} // namespace

/// Longer host records are cut, shorter ones filled up, records beyond the arrays get missing values; and
/// every pass is the same.
TEST(MAIterator, AppendsEffectSizeAndVarianceToTheHostsRecords)
{
    const std::vector<double> effects = {0.1, 0.2, 0.3};
    const std::vector<double> variances = {1.0, 2.0};
    VectorRecordIter source(Rows{{1, 1990, 5, 6}, {2}, {}, {3, 1991}});
    MAIterator iterator(source, HostVariables(), effects, variances);
    const KXVarList& variables = iterator.GetVarList();
    std::string names;
    for (int i = 0; i < variables.Size(); ++i)
        names += variables.GetVarAt(i).name + ": " + variables.GetVarAt(i).label + "; ";
    EXPECT_EQ(names, "region: Region; year: Year; $effectSize$: effect Size; $variance$: variance; ");
    EXPECT_EQ(variables.GetVarAt(0).type, KXVar::CATEGORICAL);

    EXPECT_FALSE(iterator.Reset()) << "not started";
    EXPECT_TRUE(ReadAll(iterator).empty());
    const Rows expected = {{1, 1990, 0.1, 1.0},
                           {2, missing, 0.2, 2.0},
                           {missing, missing, 0.3, missing},
                           {3, 1991, missing, missing}};
    EXPECT_TRUE(iterator.Start());
    EXPECT_EQ(ReadAll(iterator), expected);
    EXPECT_TRUE(iterator.Reset());
    EXPECT_EQ(ReadAll(iterator), expected);
}
