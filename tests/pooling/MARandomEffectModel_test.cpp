// Inverse-variance pooling, with fixed and with random effects.

#include "support/Compare.h"
#include "support/Data.h"
#include "support/StudyVectors.h"

#include "meta_analysis/pooling/MAContinousFixEffectModel.h"
#include "meta_analysis/pooling/MARandomEffectModel.h"

#include <cmath>

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

/// The models of studies (effect, variance), which it keeps.
struct Pooled
{
    explicit Pooled(const Rows& studies) : effects(ColumnOf(studies, 0)), variances(ColumnOf(studies, 1))
    {
        fixed.SetEffectSizes(&effects);
        fixed.SetVariances(&variances);
        EXPECT_TRUE(fixed.EstimateMeanESStats().IsOK());
    }

    MARandomEffectModel Random(int estimator, int adjustment = KNAPP_HARTUNG_NONE) const
    {
        MARandomEffectModel model;
        model.SetEffectSizes(&effects);
        model.SetVariances(&variances);
        model.SetEstimationType(static_cast<TAU2ESTIMATOR>(estimator));
        model.SetKHAdjType(static_cast<KNAPPHADJTYPE>(adjustment));
        model.SetConverTol(1e-12);
        EXPECT_TRUE(model.EstimateMeanESStats().IsOK());
        return model;
    }

    Row effects;
    Row variances;
    MAContinousFixEffectModel fixed;
};

} // namespace

TEST(MAContinousFixEffectModel, HeterogeneityHasLimits)
{
    struct Case
    {
        const char* name;
        Rows studies;
        double q, h2, i2;
        bool hasBounds;
    };
    const Case cases[] = {
        {"one study", {{0.5, 1}}, missing, missing, missing, false},
        {"two studies, Q = 2", {{-1, 1}, {1, 1}}, 2, 2, 0.5, false}, // the standard error divides by k - 2
        {"two studies, Q > 2", {{-2, 1}, {2, 1}}, 8, 8, 0.875, true},
        {"Q is its expectation", {{-1, 1}, {0, 1}, {1, 1}}, 2, 1, 0, true},
        {"Q below its expectation", {{-0.5, 1}, {0, 1}, {0.5, 1}}, 0.5, 0.25, 0, true},
        {"equal effects", {{0.25, 1}, {0.25, 1}, {0.25, 1}}, 0, 0, 0, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Pooled pooled(c.studies);
        const MAContinousFixEffectModel& model = pooled.fixed;
        EXPECT_TRUE(Same(model.GetHomogeneityTestQ(), c.q));
        EXPECT_EQ(model.GetHomogeneityTestPVal() == missing, c.q == missing);
        EXPECT_TRUE(Same(model.GetHeterogeneityTestH2(), c.h2));
        EXPECT_TRUE(Same(model.GetHeterogeneityTestI2(), c.i2));
        for (const double bound :
             {model.GetHeterogeneityTestH2CILower(), model.GetHeterogeneityTestH2CIUpper(),
              model.GetHeterogeneityTestI2CILower(), model.GetHeterogeneityTestI2CIUpper()})
            EXPECT_EQ(bound != missing, c.hasBounds);
    }
}

TEST(MAContinousFixEffectModel, ContrastWithoutCoefficientsKeepsItsTest)
{
    Pooled pooled({{1, 1}, {2, 3}, {4, 0.25}});
    MAContinousFixEffectModel& model = pooled.fixed;
    EXPECT_TRUE(model.ContrastTest().IsOK());
    EXPECT_EQ(model.GetContrastGMeans(), missing);
    std::vector<double> coefficients = {1, -1, 0};
    model.SetContrastCoef(&coefficients);
    EXPECT_TRUE(model.ContrastTest().IsOK());
    coefficients = {0, 0, 0};
    EXPECT_TRUE(model.ContrastTest().IsOK());
    EXPECT_EQ(model.GetContrastVariance(), 0.0);
    EXPECT_DOUBLE_EQ(model.GetContrastZVal(), -0.5);
}

/// The effects agree better than their variances say: Knapp and Hartung's factor is below 1, and not
/// truncated would shrink the variance.
TEST(MARandomEffectModel, WithoutHeterogeneityEqualsTheFixedEffectModel)
{
    const Pooled pooled({{0.1, 1}, {0.11, 2}, {0.12, 0.5}, {0.1, 4}});
    const MAContinousFixEffectModel& fixed = pooled.fixed;
    for (const TAU2ESTIMATOR estimator : {TAU2_HE, TAU2_HS, TAU2_DL, TAU2_ML, TAU2_REML, TAU2_EB}) {
        SCOPED_TRACE(estimator);
        const MARandomEffectModel model = pooled.Random(estimator);
        EXPECT_EQ(model.GetBetweenStudyVariance(), 0.0);
        EXPECT_DOUBLE_EQ(model.GetEstEffectSize(), fixed.GetEstMeanEffectSize());
        EXPECT_DOUBLE_EQ(model.GetEstESVariance(), fixed.GetEstEffectSizeVariance());
        EXPECT_DOUBLE_EQ(model.GetEstESCIUpper(), fixed.GetEstEffectSizeCIUpper());
        EXPECT_EQ(model.GetHeterogeneityTestH2(), 1.0);
        EXPECT_EQ(model.GetHeterogeneityTestI2(), 0.0);
        EXPECT_EQ(model.GetEstESStdError(), model.GetEstESVariance()); // not its root
        EXPECT_DOUBLE_EQ(pooled.Random(estimator, KNAPP_HARTUNG_ADJUSTED).GetEstESVariance(),
                         fixed.GetEstEffectSizeVariance() * fixed.GetHomogeneityTestQ() / 3);
        for (const int other : {KNAPP_HARTUNG_TRUNCATED, KNAPP_HARTUNG_IF_HETEROGENEOUS})
            EXPECT_EQ(pooled.Random(estimator, other).GetEstESVariance(), model.GetEstESVariance());
        EXPECT_EQ(pooled.Random(estimator, KNAPP_HARTUNG_IF_HETEROGENEOUS).GetEstESCIUpper(),
                  model.GetEstESCIUpper());
    }
}

/// Against sums of positive terms in extended precision.
TEST(MARandomEffectModel, DominatingWeightKeepsTheDigitsOfHeterogeneity)
{
    const Rows studies = {{0.5, 0.2}, {0.1, 0.3e-10}, {-0.7, 0.25}, {1.9, 0.5}, {0.3, 0.1}};
    long double sum = 0, weighted = 0, pairs = 0, q = 0;
    for (const Row& study : studies) {
        const long double w = 1 / static_cast<long double>(study[1]);
        pairs += w * sum;
        sum += w;
        weighted += w * study[0];
    }
    for (const Row& study : studies)
        q += (study[0] - weighted / sum) * (study[0] - weighted / sum) / study[1];
    const long double typical = 4 * sum / (2 * pairs);
    const long double tau2 = (q - 4) / (2 * pairs / sum);

    const Pooled pooled(studies);
    const MARandomEffectModel random = pooled.Random(TAU2_DL);
    const std::pair<double, long double> figures[] = {
        {random.GetBetweenStudyVariance(), tau2},
        {random.GetHomogeneityTestQ(), q},
        {random.GetHeterogeneityTestH2(), 1 + tau2 / typical},
        {random.GetHeterogeneityTestI2(), tau2 / (typical + tau2)},
        {pooled.fixed.GetHomogeneityTestQ(), q},
        {pooled.fixed.GetHeterogeneityTestI2(), (q - 4) / q},
    };
    for (const auto& [actual, expected] : figures)
        EXPECT_TRUE(Close(actual, static_cast<double>(expected), 1e-14));
}

/// Squares of these weights and their products with effects' squares are beyond the range of a double.
TEST(MARandomEffectModel, UnitOfTheEffectsPlaysNoPart)
{
    const Rows studies = {{0.5, 0.2}, {0.1, 0.03}, {-0.7, 0.25}, {1.9, 0.5}};
    for (const double unit : {std::ldexp(1.0, -300), std::ldexp(1.0, 300)}) {
        Rows scaled = studies;
        for (Row& study : scaled)
            study = {study[0] * unit, study[1] * unit * unit};
        for (const TAU2ESTIMATOR estimator : {TAU2_HE, TAU2_HS, TAU2_DL, TAU2_SJ}) {
            SCOPED_TRACE(testing::Message() << estimator << ", unit " << unit);
            const MARandomEffectModel expected = Pooled(studies).Random(estimator);
            const MARandomEffectModel model = Pooled(scaled).Random(estimator);
            EXPECT_EQ(model.GetBetweenStudyVariance(), expected.GetBetweenStudyVariance() * unit * unit);
            EXPECT_EQ(model.GetHeterogeneityTestI2(), expected.GetHeterogeneityTestI2());
            EXPECT_EQ(model.GetHeterogeneityTestH2(), expected.GetHeterogeneityTestH2());
        }
    }
}

/// Effects so large beside their variances that the search has no numbers left: it ends without a proof.
TEST(MARandomEffectModel, SearchWithoutProofIsDoubtful)
{
    Pooled pooled({{1e150, 1}, {-1e150, 1}, {0, 1}});
    MARandomEffectModel model;
    model.SetEffectSizes(&pooled.effects);
    model.SetVariances(&pooled.variances);
    model.SetEstimationType(TAU2_ML);
    model.SetTau2Search(TAU2_SEARCH_GLOBAL);
    EXPECT_TRUE(model.EstimateMeanESStats().IsOK());
    EXPECT_EQ(model.GetTau2Convergence(), TAU2_STEP_NOT_FINITE);
    EXPECT_TRUE(model.HasDoubtfulTau2());
}

/// Knapp and Hartung's variance is 0, and so is tau²: all of the distribution is at the threshold.
TEST(MARandomEffectModel, ThresholdAtADistributionOfOneValueHasNoProbability)
{
    Pooled pooled({{0.5, 1}, {0.5, 1}, {0.5, 1}});
    MARandomEffectModel model;
    model.SetEffectSizes(&pooled.effects);
    model.SetVariances(&pooled.variances);
    model.SetKHAdjType(KNAPP_HARTUNG_ADJUSTED);
    model.SetProbabilityAbove(0.5);
    EXPECT_TRUE(model.EstimateMeanESStats().IsOK());
    EXPECT_EQ(model.GetPIProbability(), missing);
}

/// Numbers that strain the arithmetic.
TEST(MARandomEffectModel, ExtremeStudiesArePooled)
{
    const Rows cases[] = {
        {{1e60, 1e120}, {-3e60, 2e120}, {7e60, 3e120}}, {{1e-60, 1e-120}, {-3e-60, 2e-120}, {7e-60, 3e-120}},
        {{0.1, 1e-30}, {0.2, 1}, {0.3, 1e30}},          {{0, 1}, {0.1, 1}, {1e12, 1}},
        {{0.1, 1}, {0.2, infinity}, {0.3, 1}},
    };
    for (const Rows& studies : cases) {
        SCOPED_TRACE(testing::PrintToString(studies));
        const Pooled pooled(studies);
        EXPECT_TRUE(std::isfinite(pooled.fixed.GetEstMeanEffectSize()));
        for (int estimator = TAU2_HE; estimator <= TAU2_EB; ++estimator) {
            const MARandomEffectModel model = pooled.Random(estimator, KNAPP_HARTUNG_ADJUSTED);
            EXPECT_GE(model.GetBetweenStudyVariance(), 0.0) << estimator;
            EXPECT_TRUE(std::isfinite(model.GetEstEffectSize())) << estimator;
            EXPECT_TRUE(std::isfinite(model.GetEstESVariance())) << estimator;
        }
    }
}

/// Squares of the effects overflow. A tau² of 0 would pass for an estimate of studies that agree.
TEST(MARandomEffectModel, OverflowIsNoEstimate)
{
    const Pooled pooled({{1e160, 1}, {-1e160, 2}, {3e159, 1}});
    for (const int estimator : {TAU2_HE, TAU2_HS, TAU2_DL, TAU2_SJ})
        EXPECT_FALSE(std::isfinite(pooled.Random(estimator).GetBetweenStudyVariance())) << estimator;
}

TEST(MARandomEffectModel, StudyVectorsAreChecked)
{
    using Fixed = MAContinousFixEffectModel;
    ExpectStudyVectorsChecked({&Fixed::SetEffectSizes, &Fixed::SetVariances}, &Fixed::EstimateMeanESStats,
                              MAStatusCode::LENGTH_MISMATCH);
    using Random = MARandomEffectModel;
    ExpectStudyVectorsChecked({&Random::SetEffectSizes, &Random::SetVariances}, &Random::EstimateMeanESStats,
                              MAStatusCode::INPUT_NOT_GIVEN);
}
