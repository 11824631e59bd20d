#include "support/DisplayOf.h"
#include "support/Regression.h"

#include "meta_analysis/platform/common/KXQueryCancel.h"
#include "meta_analysis/settings/MARegSettings.h"

#include <gmock/gmock.h>

using MA_NAMESPACE::MARegSettings;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using Indices = std::vector<int>;

namespace {

struct NeverCancel : KXQueryCancel
{
    bool IsCancelled() override { return false; }
};

} // namespace

TEST(MARegSettings, AVariableIsDependentFactorOrCovariateButMayAlsoBeAWeight)
{
    constexpr int maxInt = std::numeric_limits<int>::max();
    MARegSettings settings;
    EXPECT_EQ(settings.GetMaxIndex(), -1);
    EXPECT_EQ(settings.GetDependentType(), KXConst::DEPENDENT_NONE);
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
    for (const int index : {-1, 0, 1, 2, 3, 4, 6, 9, maxInt}) {
        const bool isUsed = index > 0 && index != 3 && index != maxInt;
        EXPECT_EQ(settings.HasVariable(index), isUsed) << index;
    }
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

TEST(MARegSettings, IsValidWithUsableTolerancesAndStepHalving)
{
    struct Case
    {
        double logLikelihoodTolerance, parameterTolerance;
        int maxStepHalving, code;
    };
    const Case cases[] = {{0.0, 1e-6, 5, 0},     {1e-6, 0.0, 1, 0},        {0.0, notANumber, 5, 0},
                          {0.0, 0.0, 5, 460009}, {-1e-9, 1e-6, 5, 460009}, {1e-6, -1e-9, 5, 460009},
                          {0.0, 1e-6, 0, 460009}};
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        MARegSettings settings;
        settings.SetLogLikelihoodTolerance(c.logLikelihoodTolerance);
        settings.SetParameterTolerance(c.parameterTolerance);
        settings.SetMaxStepHalvingValue(c.maxStepHalving);
        EXPECT_EQ(settings.IsValid(), c.code == 0);
        EXPECT_EQ(settings.IsValidSettings(false).GetCode(), c.code);
        EXPECT_EQ(settings.IsValidSettings(true).GetCode(), 460009) << "no dependent";
        settings.SetDependent(0);
        EXPECT_EQ(settings.IsValidSettings(true).GetCode(), c.code);
    }
}

TEST(MARegSettings, KeepsTheEstimatorCodeByItsPointer)
{
    const char code[] = "REML";
    MARegSettings settings;
    EXPECT_STREQ(settings.GetEstTauType(), "HE");
    settings.SetEstTauType(code);
    EXPECT_EQ(MARegSettings(settings).GetEstTauType(), code);
    settings.SetEstTauType(nullptr);
    EXPECT_STREQ(settings.GetEstTauType(), "");
}

TEST(MARegSettings, DisplaysEverySettingInOrder)
{
    NeverCancel cancel;
    MARegSettings settings;
    EXPECT_THAT(DisplayOf(settings),
                AllOf(Not(HasSubstr("Dependent index")), Not(HasSubstr("weight index"))));
    settings.SetCancelObject(&cancel);
    settings.SetTempDirectory("/tmp");
    EXPECT_TRUE(settings.SetNSkippedReports(3));
    EXPECT_FALSE(settings.SetNSkippedReports(-1));
    settings.SetDependent(3);
    settings.SetDependentSize(4);
    settings.AddFactor(4, 2);
    settings.AddCovariate(5);
    settings.SetFreqWeightVar(0);
    settings.SetRegrWeightVar(7);
    settings.AddModelEffect(EffectOf({4}, {5}));
    EXPECT_EQ(settings.GetDependentSize(), 0);
    EXPECT_EQ(
        DisplayOf(settings),
        "MARegSettings display start; Iteration progress listener for model building is not defined; "
        "Record progress listener is not defined; Number of progress reports to skip 3; "
        "Cancel object is defined; Temporary file directory: /tmp; Factors 4; Factors sizes 2; "
        "Covariates 5; Dependent type 1; Dependent index 3; Dependent number of categories 4; "
        "Dependent reference category 0; Frequency weight index 0; Omega weight index 7; "
        "Intercept in the model indicator false; Number of model effects:  1; KXModelEffect display start; "
        "Factors 4; Covariates 5; Multiplicities 1; KXModelEffect display end; "
        "Max steps in step-halving method 5; Max number of iterations 100; "
        "Loglikelihood convergence tolerance 0; Parameter convergence tolerance 1e-06; "
        "Computational tolerance 1e-12; Estimator type of parameter estimate covariance matrix 0; "
        "Parameter for m-dependent working correlation matrix 0; Confidence interval level 0.95; "
        "Frequency of showing iteration history 0; MARegSettings display end; ");
}
