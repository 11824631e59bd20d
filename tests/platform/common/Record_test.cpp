// Records, their variables, and the bits that mark either.

#include "support/Compare.h"

#include "meta_analysis/platform/common/KXBitSet.h"
#include "meta_analysis/platform/common/Record.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"

TEST(KXBitSet, CrossesWordsAndIgnoresPositionsOutside)
{
    KXBitSet bits(130);
    for (const std::size_t position : {0u, 63u, 64u, 129u, 130u, ~0u})
        bits.Set(position);
    bits.Clear(64);
    EXPECT_EQ(bits.Count(), 3u);
    EXPECT_TRUE(bits.Test(63));
    EXPECT_FALSE(bits.Test(64));
    EXPECT_FALSE(bits.Test(130));
    KXBitSet resized = bits;
    resized.Resize(129);
    resized.Resize(130);
    EXPECT_NE(resized, bits) << "a bit that was cut off is clear when it comes back";
}

TEST(Record, HasMissingValuesOutside)
{
    Record record({1.5});
    ASSERT_TRUE(record.Resize(3));
    record.Set(2, 3.5);
    EXPECT_FALSE(record.Resize(std::numeric_limits<std::size_t>::max()));
    for (const int outside : {-1, 3, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        record.Set(outside, 7.0);
        EXPECT_EQ(record.Get(outside), missing) << outside;
    }
    EXPECT_EQ((std::vector<double>{record.Get(0), record.Get(1), record.Get(2)}),
              (std::vector<double>{1.5, missing, 3.5}));
}

TEST(VectorRecordIter, YieldsTheSameRecordsInEveryPass)
{
    VectorRecordIter records({{1.0, 2.0}, {3.0}});
    EXPECT_EQ(records.Next(), nullptr) << "not started";
    EXPECT_FALSE(records.Reset());
    ASSERT_TRUE(records.Start());
    EXPECT_EQ(records.Next()->Get(0), 1.0);
    for (const bool starts : {true, false}) { // in the middle of a pass, and at its end
        ASSERT_TRUE(starts ? records.Start() : records.Reset());
        EXPECT_EQ(records.Next()->Get(0), 1.0);
        EXPECT_EQ(records.Next()->Get(0), 3.0);
        EXPECT_EQ(records.Next(), nullptr);
    }
}
