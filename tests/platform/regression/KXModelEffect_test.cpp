#include "support/Compare.h"

#include "meta_analysis/platform/regression/FactorLevel.h"
#include "meta_analysis/platform/regression/KXFactorCounts.h"
#include "meta_analysis/platform/regression/KXModelEffect.h"

using Indices = std::vector<int>;
constexpr int maxInt = std::numeric_limits<int>::max();

TEST(KXModelEffect, MultipliesDistinctFactorsWithPowersOfCovariates)
{
    KXModelEffect effect;
    EXPECT_FALSE(effect.AddFactor(-1));
    EXPECT_FALSE(effect.AddCovariate(1, 0));
    EXPECT_TRUE(effect.IsIntercept());

    EXPECT_TRUE(effect.AddCovariate(7));
    EXPECT_TRUE(effect.AddFactor(0));
    EXPECT_TRUE(effect.AddCovariate(5, maxInt - 1));
    EXPECT_TRUE(effect.AddFactor(2));
    EXPECT_FALSE(effect.AddFactor(0)) << "a factor times itself";
    EXPECT_FALSE(effect.AddFactor(7)) << "a covariate as factor";
    EXPECT_FALSE(effect.AddCovariate(2)) << "a factor as covariate";
    EXPECT_FALSE(effect.AddCovariate(5, 2)) << "a power beyond int";
    EXPECT_TRUE(effect.AddCovariate(5));
    EXPECT_TRUE(effect.AddCovariate(7));
    EXPECT_FALSE(effect.IsIntercept());
    EXPECT_EQ(effect.GetFactors(), (Indices{0, 2}));
    EXPECT_EQ(effect.GetCovariates(), (Indices{7, 5}));
    EXPECT_EQ(effect.GetCovMultiplicities(), (Indices{2, maxInt}));
    EXPECT_EQ(effect.GetVariables(), (Indices{7, 0, 5, 2}));
}

TEST(FactorLevel, IsTheNearestIntegerOrNone)
{
    EXPECT_EQ(FactorLevel(-0.0), 0);
    EXPECT_EQ(FactorLevel(2.4), 2);
    EXPECT_EQ(FactorLevel(2.5), 3);
    EXPECT_EQ(FactorLevel(2147483646.9), maxInt);
    for (const double none : {-1e-300, -0.3, 2147483648.0, 1e300, infinity, notANumber, missing})
        EXPECT_EQ(FactorLevel(none), -1) << none;
}

/// Variables: two factors, the frequency, the dependent.
TEST(KXFactorCounts, SumFrequenciesOfCompleteRecordsByLevel)
{
    KXFactorCounts counts({0, 1}, {3, maxInt}, 2, 3);
    for (const std::vector<double>& row : std::vector<std::vector<double>>{{2.0, 7.0, 2.5, 9.0},
                                                                           {1.6, 2e9, 4.0, -9.0},
                                                                           {3.0, 7.2, 1.0, 9.0},
                                                                           {2.0, 7.0, 100.0, missing},
                                                                           {2.0, 7.0, notANumber, 9.0},
                                                                           {2.0, 7.0, -1.0, 9.0},
                                                                           {2.0, 7.0, 100.0}})
        counts.Update(Record(row));
    EXPECT_EQ(counts.GetCount(0, 2), 6.5);
    EXPECT_EQ(counts.GetCount(0, 3), 0.0) << "beyond the factor's size";
    EXPECT_EQ(counts.GetCount(1, 7), 3.5);
    EXPECT_EQ(counts.GetCount(1, 2000000000), 4.0) << "costs no more memory than level 0";
    EXPECT_EQ(counts.GetCount(2, 7), 0.0) << "no such factor";
}
