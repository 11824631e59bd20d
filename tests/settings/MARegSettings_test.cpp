#include "support/Regression.h"

#include "meta_analysis/settings/MARegSettings.h"
#include "meta_analysis/settings/MAStatusCode.h"

using MA_NAMESPACE::MARegSettings;
using namespace MA_NAMESPACE::MAStatusCode;
using Indices = std::vector<int>;

TEST(MARegSettings, AVariableIsDependentFactorOrCovariateButMayAlsoBeAWeight)
{
    constexpr int maxInt = std::numeric_limits<int>::max();
    MARegSettings settings;
    EXPECT_TRUE(settings.SetDependent(9));
    EXPECT_TRUE(settings.SetSingleDependent(1)) << "in place of the one before";
    EXPECT_EQ(settings.AddFactor(4, 3), 0);
    EXPECT_EQ(settings.AddFactor(2, 5), 1);
    EXPECT_EQ(settings.AddCovariate(9), 0) << "not the dependent any more";
    EXPECT_EQ(settings.AddCovariate(6), 1);

    EXPECT_EQ(settings.AddFactor(4, 2), -1) << "another size";
    EXPECT_EQ(settings.AddFactor(3, 0), -1) << "no level";
    for (const int index : {-1, 1, 4, 9}) {
        EXPECT_EQ(settings.AddFactor(index, 3), index == 4 ? 0 : -1) << index;
        EXPECT_EQ(settings.AddCovariate(index), index == 9 ? 0 : -1) << index;
        EXPECT_EQ(settings.SetDependent(index), index == 1) << index;
    }
    EXPECT_EQ(settings.GetFactors(), (Indices{4, 2}));
    EXPECT_EQ(settings.GetFactorSizes(), (Indices{3, 5}));
    EXPECT_EQ(settings.GetCovariates(), (Indices{9, 6}));

    settings.SetFreqWeightVar(6);
    settings.SetRegrWeightVar(maxInt);
    EXPECT_EQ(settings.GetMaxIndex(), maxInt);
    for (const int index : {1, 2, 4, 6, 9})
        EXPECT_TRUE(settings.HasVariable(index)) << index;
    for (const int index : {-1, 0, 3, maxInt})
        EXPECT_FALSE(settings.HasVariable(index)) << index;
}

TEST(MARegSettings, EffectsListTheirVariablesOnceInOrderOfFirstUse)
{
    MARegSettings settings;
    EXPECT_TRUE(settings.IsEmptyModel());
    settings.AddFactor(1, 2);
    settings.AddFactor(2, 5);
    settings.AddCovariate(4);
    for (const KXModelEffect& effect : {EffectOf({2}, {4}), EffectOf({2, 1}, {}), EffectOf({7}, {8, 4})})
        EXPECT_TRUE(settings.AddModelEffect(effect));
    const MARegSettings copy = settings;
    EXPECT_TRUE(settings.AddModelEffect(settings.GetModelEffects()[0]));

    EXPECT_EQ(settings.GetNumOfModelEffects(), 4);
    EXPECT_EQ(copy.GetNumOfModelEffects(), 3);
    EXPECT_FALSE(settings.IsEmptyModel());
    EXPECT_TRUE(settings.IsValid())
        << "7 and 8, which are not in the settings, are left to the design matrix";
    for (const MARegSettings& each : {settings, copy}) {
        EXPECT_EQ(each.GetEffectFactors(), (Indices{2, 1, 7}));
        EXPECT_EQ(each.GetEffectFactorSizes(), (Indices{5, 2, 0}));
        EXPECT_EQ(each.GetEffectCovariates(), (Indices{4, 8}));
    }
}

TEST(MARegSettings, AreValidWithAToleranceAndStepHalving)
{
    struct Case
    {
        double logLikelihoodTolerance, parameterTolerance;
        int maxStepHalving;
        bool isValid;
    };
    const Case cases[] = {{0.0, 1e-6, 5, true}, {1e-6, 0.0, 1, true},    {0.0, notANumber, 5, true},
                          {0.0, 0.0, 5, false}, {-1e-9, 1e-6, 5, false}, {1e-6, -1e-9, 5, false},
                          {0.0, 1e-6, 0, false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        MARegSettings settings;
        settings.SetLogLikelihoodTolerance(c.logLikelihoodTolerance);
        settings.SetParameterTolerance(c.parameterTolerance);
        settings.SetMaxStepHalvingValue(c.maxStepHalving);
        const KXStatus expected = c.isValid ? KXStatus() : KXStatus(INPUT_NOT_GIVEN);
        EXPECT_EQ(settings.IsValidSettings(false), expected);
        EXPECT_EQ(settings.IsValidSettings(true), KXStatus(INPUT_NOT_GIVEN)) << "no dependent";
        settings.SetDependent(0);
        EXPECT_EQ(settings.IsValidSettings(true), expected);
    }
}

TEST(MARegSettings, KeepTheEstimatorCodeByItsPointer)
{
    const char code[] = "REML";
    MARegSettings settings;
    settings.SetEstTauType(code);
    EXPECT_EQ(MARegSettings(settings).GetEstTauType(), code);
    settings.SetEstTauType(nullptr);
    EXPECT_STREQ(settings.GetEstTauType(), "");
}
