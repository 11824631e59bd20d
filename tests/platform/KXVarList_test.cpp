#include "meta_analysis/platform/common/KXVarList.h"

#include <gtest/gtest.h>

TEST(KXVarList, PositionsAndNamesAgree)
{
    KXVarList original;
    EXPECT_EQ(original.AddContVar("year", "year of publication"), 0);
    KXVarList variables = original;
    EXPECT_EQ(variables.AddCatVar("allocation", "method of allocation"), 1);
    EXPECT_EQ(variables.AddContVar("year", "a second one"), 2);

    EXPECT_EQ(original.Size(), 1);
    EXPECT_EQ(variables.FindVariable("year"), 0);
    EXPECT_EQ(variables.FindVariable("allocation"), 1);
    EXPECT_EQ(variables.FindVariable("Year"), -1);
    EXPECT_EQ(variables.GetVarAt(0).type, KXVar::CONTINUOUS);
    EXPECT_EQ(variables.GetVarAt(1).type, KXVar::CATEGORICAL);
    EXPECT_EQ(variables.GetVarAt(2).label, "a second one");
    for (const int outside : {-1, 3})
        EXPECT_TRUE(variables.GetVarAt(outside).name.empty()) << outside;
}
