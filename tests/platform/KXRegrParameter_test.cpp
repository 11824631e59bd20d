#include "meta_analysis/platform/regression/KXRegrParameter.h"

#include <gtest/gtest.h>

#include <vector>

TEST(KXRegrParameter, StandsForTheInterceptOrACellOfAnEffect)
{
    KXModelEffect interaction;
    interaction.AddCovariate(2, 2);
    interaction.AddFactor(1);
    KXRegrParameter parameter;
    EXPECT_TRUE(parameter.IsIntercept());
    EXPECT_EQ(parameter.GetEffectNumber(), -1);

    parameter.SetupFromEffect(interaction, 4, 0);
    parameter.SetCategories({3});
    const KXRegrParameter cell = parameter;
    parameter.SetupFromEffect(KXModelEffect(), 0, 0);
    EXPECT_TRUE(parameter.IsIntercept());
    EXPECT_TRUE(parameter.GetCategories().empty()) << "those of the effect before";
    EXPECT_FALSE(cell.IsIntercept());
    EXPECT_EQ(cell.GetEffectNumber(), 4);
    EXPECT_EQ(cell.GetFactors(), std::vector<int>{1});
    EXPECT_EQ(cell.GetCategories(), std::vector<int>{3});
    EXPECT_EQ(cell.GetCovariates(), std::vector<int>{2});
    EXPECT_EQ(cell.GetCovMultiplicities(), std::vector<int>{2});
}
