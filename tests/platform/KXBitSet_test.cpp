#include "meta_analysis/platform/common/KXBitSet.h"

#include <gtest/gtest.h>

TEST(KXBitSet, BitsAcrossWordsAndOutside)
{
    KXBitSet bits(130);
    for (const std::size_t position : {0u, 63u, 64u, 129u, 130u, ~0u})
        bits.Set(position);
    bits.Clear(64);
    bits.Clear(130);
    EXPECT_EQ(bits.Count(), 3u);
    EXPECT_TRUE(bits.Test(63));
    EXPECT_FALSE(bits.Test(64));
    EXPECT_FALSE(bits.Test(130));

    KXBitSet resized = bits;
    resized.Resize(129);
    EXPECT_NE(resized, bits);
    resized.Resize(130);
    EXPECT_FALSE(resized.Test(129)); // cut off, and clear when it comes back
    resized.Set(129);
    EXPECT_EQ(resized, bits);
}
