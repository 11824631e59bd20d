#include "meta_analysis/platform/common/VectorRecordIter.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

std::vector<double> ReadFirstValues(MultiPassRecordIter& records)
{
    std::vector<double> values;
    while (const Record* record = records.Next())
        values.push_back(record->Get(0));
    return values;
}

} // namespace

TEST(VectorRecordIter, EveryPassYieldsTheSameRecords)
{
    VectorRecordIter records({{1.0, 2.0}, {3.0}, {5.0, 6.0}});
    EXPECT_EQ(records.Next(), nullptr); // not started
    EXPECT_FALSE(records.Reset());

    const std::vector<double> expected = {1.0, 3.0, 5.0};
    ASSERT_TRUE(records.Start());
    EXPECT_EQ(ReadFirstValues(records), expected);
    EXPECT_EQ(records.Next(), nullptr);
    ASSERT_TRUE(records.Reset());
    records.Next();
    ASSERT_TRUE(records.Start()); // in the middle of a pass
    EXPECT_EQ(ReadFirstValues(records), expected);

    VectorRecordIter none(std::vector<Record>{});
    EXPECT_TRUE(none.Start());
    EXPECT_EQ(none.Next(), nullptr);
}
