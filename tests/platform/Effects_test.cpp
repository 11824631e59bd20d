// The effects of a model and the parameters that stand for them.

#include "meta_analysis/platform/regression/KXModelEffect.h"
#include "meta_analysis/platform/regression/KXRegrParameter.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

using Indices = std::vector<int>;

TEST(KXModelEffect, MultipliesDistinctFactorsWithPowersOfCovariates)
{
    KXModelEffect effect;
    EXPECT_TRUE(effect.IsIntercept());
    EXPECT_TRUE(effect.AddCovariate(7));
    EXPECT_TRUE(effect.AddFactor(4));
    EXPECT_TRUE(effect.AddCovariate(5, 3));
    EXPECT_TRUE(effect.AddFactor(2));
    EXPECT_TRUE(effect.AddCovariate(7));

    EXPECT_FALSE(effect.IsIntercept());
    EXPECT_EQ(effect.GetFactors(), (Indices{4, 2}));
    EXPECT_EQ(effect.GetFactorLevels(), (Indices{0, 1}));
    EXPECT_EQ(effect.GetNFactors(), 2);
    EXPECT_EQ(effect.GetCovariates(), (Indices{7, 5}));
    EXPECT_EQ(effect.GetCovMultiplicities(), (Indices{2, 3}));
    EXPECT_EQ(effect.GetVariables(), (Indices{7, 4, 5, 2}));
}

TEST(KXModelEffect, RefusesWhatIsNoProductAndStaysAsItWas)
{
    constexpr int maxInt = std::numeric_limits<int>::max();
    KXModelEffect effect;
    EXPECT_FALSE(effect.AddFactor(-1));
    EXPECT_FALSE(effect.AddCovariate(-1));
    EXPECT_FALSE(effect.AddCovariate(1, 0));
    EXPECT_TRUE(effect.IsIntercept());

    ASSERT_TRUE(effect.AddFactor(0));
    ASSERT_TRUE(effect.AddCovariate(1, maxInt - 1));
    EXPECT_FALSE(effect.AddFactor(0)) << "a factor times itself";
    EXPECT_FALSE(effect.AddFactor(1)) << "a covariate as factor";
    EXPECT_FALSE(effect.AddCovariate(0)) << "a factor as covariate";
    EXPECT_FALSE(effect.AddCovariate(1, 2)) << "a power beyond int";
    EXPECT_TRUE(effect.AddCovariate(1));
    EXPECT_EQ(effect.GetCovMultiplicities(), (Indices{maxInt}));
    EXPECT_EQ(effect.GetVariables(), (Indices{0, 1}));
}

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
