#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/Record.h"

#include <gtest/gtest.h>

#include <limits>

TEST(Record, ValuesOutsideAreMissingAndNotStored)
{
    Record record({1.5});
    ASSERT_TRUE(record.Resize(3));
    record.Set(2, 3.5);
    EXPECT_FALSE(record.Resize(std::numeric_limits<std::size_t>::max()));
    for (const int outside : {-1, 3, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        record.Set(outside, 7.0);
        EXPECT_TRUE(KXMV::IsMissing(record.Get(outside))) << outside;
    }
    EXPECT_EQ(record.Size(), 3u);
    EXPECT_EQ(record.Get(0), 1.5);
    EXPECT_TRUE(KXMV::IsMissing(record.Get(1)));
    EXPECT_EQ(record.Get(2), 3.5);
}
