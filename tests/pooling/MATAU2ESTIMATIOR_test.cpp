#include "support/Compare.h"
#include "support/StudyVectors.h"

#include "meta_analysis/pooling/MATAU2ESTIMATIOR.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

const TAU2ESTIMATOR allEstimators[] = {TAU2_HE, TAU2_HS, TAU2_DL, TAU2_SJ, TAU2_ML, TAU2_REML, TAU2_EB};

struct Limits
{
    double tolerance = 1e-12;
    int iterations = 1000;
    int halvings = 5;
};

double Tau2(TAU2ESTIMATOR type, const std::vector<double>& y, const std::vector<double>& v,
            Limits limits = {})
{
    MATAU2ESTIMATIOR estimator;
    estimator.SetEffectSizes(&y);
    estimator.SetVariances(&v);
    estimator.SetConverTol(limits.tolerance);
    estimator.SetMaxIter(limits.iterations);
    estimator.SetMaxStepHalving(limits.halvings);
    EXPECT_TRUE(estimator.ComputeTau2Variance(type).IsOK());
    return estimator.GetBetweenStudyVariannce();
}

} // namespace

TEST(MATAU2ESTIMATIOR, OneStudyHasNone)
{
    for (const TAU2ESTIMATOR type : allEstimators) {
        for (int i = 1; i <= 1000; ++i)
            EXPECT_EQ(Tau2(type, {0.1 * i}, {0.01 * i}), 0.0) << "type " << type << ", study " << i;
        EXPECT_EQ(Tau2(type, {}, {}), 0.0) << type;
    }
}

/// Two studies at -1 and 1 with variance 1.9: the Hedges estimate is 0.1, and every step leads to -0.9.
/// A sixteenth of the first, then a thirty-second of the second can be taken; the third would need the
/// seventh half.
TEST(MATAU2ESTIMATIOR, StepHalvingLimit)
{
    const std::pair<int, double> ends[] = {
        {5, 0.008203125}, {4, 0.008203125}, {3, 0.0375}, {2, 0.1}, {0, 0.1}};
    for (const auto& [halvings, end] : ends)
        EXPECT_NEAR(Tau2(TAU2_ML, {-1, 1}, {1.9, 1.9}, {1e-12, 100, halvings}), end, 1e-15) << halvings;
    EXPECT_NEAR(Tau2(TAU2_ML, {-1, 1}, {1.9, 1.9}, {1e-12, 1, 5}), 0.0375, 1e-15);
    EXPECT_NEAR(Tau2(TAU2_ML, {-1, 1}, {1.9, 1.9}, {1e-12, 0, 5}), 0.1, 1e-15);
    EXPECT_NEAR(Tau2(TAU2_ML, {-1, 1}, {1.9, 1.9}, {10, 100, 5}), 0.1, 1e-15); // small steps are not taken
}

TEST(MATAU2ESTIMATIOR, UnknownTypeAndReuse)
{
    const std::vector<double> y = {0, 1, 4};
    const std::vector<double> v = {1, 1, 1};
    MATAU2ESTIMATIOR estimator;
    estimator.SetEffectSizes(&y);
    estimator.SetVariances(&v);
    EXPECT_TRUE(estimator.ComputeTau2Variance(static_cast<TAU2ESTIMATOR>(9)).IsOK());
    EXPECT_EQ(estimator.GetBetweenStudyVariannce(), -1.0);
    for (const TAU2ESTIMATOR type : {TAU2_DL, static_cast<TAU2ESTIMATOR>(9)}) {
        EXPECT_TRUE(estimator.ComputeTau2Variance(type).IsOK());
        EXPECT_NEAR(estimator.GetBetweenStudyVariannce(), 13.0 / 3 - 1, 1e-14);
    }
    EXPECT_TRUE(estimator.SetNonRedundantParamSize(1).IsOK());
    EXPECT_EQ(estimator.SetNonRedundantParamSize(2), KXStatus(MAStatusCode::TOO_MANY_NONREDUNDANT));
    EXPECT_EQ(estimator.GetBetweenStudyVariannce(), -1.0);
    EXPECT_EQ(estimator.SetMaxIter(1), KXStatus(MAStatusCode::TOO_MANY_NONREDUNDANT));
}

TEST(MATAU2ESTIMATIOR, StudyVectorsAreChecked)
{
    /// `ComputeTau2Variance` without its argument.
    struct Reml : MATAU2ESTIMATIOR
    {
        KXStatus Compute() { return ComputeTau2Variance(TAU2_REML); }
    };
    using C = MATAU2ESTIMATIOR;
    ExpectStudyVectorsChecked({&C::SetEffectSizes, &C::SetVariances}, &Reml::Compute,
                              MAStatusCode::INPUT_NOT_GIVEN);
}
