#include "meta_analysis/settings/MAModelSettings.h"

#include <gtest/gtest.h>

using MA_NAMESPACE::MAModelSettings;

/// Runs of copies show that a copy has every setting.
TEST(MAModelSettings, CopiesHaveListsOfTheirOwn)
{
    MAModelSettings original;
    original.SetContrastCoefIndex({5, 6});
    const MAModelSettings copied = original;
    MAModelSettings assigned;
    assigned = original;
    original.SetContrastCoefIndex({});
    for (const MAModelSettings& copy : {copied, assigned})
        EXPECT_EQ(copy.GetContrastCoefIndex(), (std::vector<int>{5, 6}));
}
