#include "support/Compare.h"
#include "support/StudyVectors.h"

#include "meta_analysis/pooling/MAContinousFixEffectModel.h"
#include "meta_analysis/pooling/MARandomEffectModel.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

MARandomEffectModel Fitted(const std::vector<double>& y, const std::vector<double>& v,
                           TAU2ESTIMATOR estimator, KNAPPHADJTYPE adjustment = KNAPP_HARTUNG_NONE)
{
    MARandomEffectModel model;
    model.SetEffectSizes(&y);
    model.SetVariances(&v);
    model.SetEstimationType(estimator);
    model.SetKHAdjType(adjustment);
    model.SetConverTol(1e-12);
    EXPECT_TRUE(model.EstimateMeanESStats().IsOK());
    return model;
}

MAContinousFixEffectModel FixedFitted(const std::vector<double>& y, const std::vector<double>& v)
{
    MAContinousFixEffectModel model;
    model.SetEffectSizes(&y);
    model.SetVariances(&v);
    EXPECT_TRUE(model.EstimateMeanESStats().IsOK());
    return model;
}

/// Effect sizes with variances that strain or break the arithmetic.
struct HostileEffects
{
    const char* name;
    std::vector<double> effects;
    std::vector<double> variances;
    bool isPoolable; ///< the pooled results are finite
};

const HostileEffects hostileEffects[] = {
    {"huge", {1e60, -3e60, 7e60}, {1e120, 2e120, 3e120}, true},
    {"tiny", {1e-60, -3e-60, 7e-60}, {1e-120, 2e-120, 3e-120}, true},
    {"equal effects", {0.1, 0.1, 0.1}, {1, 2, 3}, true},
    {"weights of all sizes", {0.1, 0.2, 0.3}, {1e-30, 1, 1e30}, true},
    {"far outlier", {0, 0.1, 1e12}, {1, 1, 1}, true},
    {"infinite variance", {0.1, 0.2, 0.3}, {1, infinity, 1}, true},
    {"overflowing squares", {1e200, -1e200, 0}, {1, 1, 1}, false},
    {"zero variance", {0.1, 0.2, 0.3}, {1, 0, 1}, false},
    {"zero variances, equal effects", {0.1, 0.1}, {0, 0}, false},
    {"negative variance", {0.1, 0.2, 0.3}, {1, -1, 1}, false},
    {"infinite effect", {0.1, infinity, 0.3}, {1, 1, 1}, false},
    {"NaN effect", {0.1, notANumber, 0.3}, {1, 1, 1}, false},
    {"NaN variance", {0.1, 0.2, 0.3}, {1, notANumber, 1}, false},
    {"missing effect", {0.1, missing, 0.3}, {1, 1, 1}, false},
    {"one study without precision", {0.1}, {infinity}, false},
};

} // namespace

TEST(MARandomEffectModel, WithoutHeterogeneityEqualsTheFixedEffectModel)
{
    const std::vector<double> y = {0.1, 0.11, 0.12, 0.1};
    const std::vector<double> v = {1, 2, 0.5, 4};
    const MAContinousFixEffectModel fixed = FixedFitted(y, v);
    for (const TAU2ESTIMATOR estimator : {TAU2_HE, TAU2_HS, TAU2_DL, TAU2_ML, TAU2_REML, TAU2_EB}) {
        const MARandomEffectModel model = Fitted(y, v, estimator);
        EXPECT_EQ(model.GetBetweenStudyVariance(), 0.0);
        EXPECT_DOUBLE_EQ(model.GetEstEffectSize(), fixed.GetEstMeanEffectSize());
        EXPECT_DOUBLE_EQ(model.GetEstESVariance(), fixed.GetEstEffectSizeVariance());
        EXPECT_DOUBLE_EQ(model.GetEstESTestStat(), fixed.GetEstEffectSizeZVal());
        EXPECT_DOUBLE_EQ(model.GetEstESCIUpper(), fixed.GetEstEffectSizeCIUpper());
        EXPECT_DOUBLE_EQ(model.GetHomogeneityTestQ(), fixed.GetHomogeneityTestQ());
        EXPECT_EQ(model.GetHeterogeneityTestH2(), 1.0);
        EXPECT_EQ(model.GetHeterogeneityTestI2(), 0.0);

        // The effects agree better than their variances say: the factor is below 1, and not truncated
        // would shrink the variance.
        const MARandomEffectModel adjusted = Fitted(y, v, estimator, KNAPP_HARTUNG_ADJUSTED);
        EXPECT_DOUBLE_EQ(adjusted.GetEstESVariance(),
                         fixed.GetEstEffectSizeVariance() * fixed.GetHomogeneityTestQ() / 3);
        const MARandomEffectModel truncated = Fitted(y, v, estimator, KNAPP_HARTUNG_TRUNCATED);
        EXPECT_EQ(truncated.GetEstESVariance(), model.GetEstESVariance());
        EXPECT_EQ(model.GetEstESStdError(), model.GetEstESVariance()); // not its root
    }
}

/// Against sums of positive terms in extended precision.
TEST(MARandomEffectModel, DominatingWeightKeepsTheDigitsOfHeterogeneity)
{
    const std::vector<double> y = {0.5, 0.1, -0.7, 1.9, 0.3};
    const std::vector<double> v = {0.2, 0.3e-10, 0.25, 0.5, 0.1};
    long double sum = 0, weighted = 0, pairs = 0, q = 0;
    for (std::size_t i = 0; i < y.size(); ++i) {
        const long double w = 1 / static_cast<long double>(v[i]);
        pairs += w * sum;
        sum += w;
        weighted += w * y[i];
    }
    for (std::size_t i = 0; i < y.size(); ++i)
        q += (y[i] - weighted / sum) * (y[i] - weighted / sum) / v[i];
    const long double typical = 4 * sum / (2 * pairs);
    const long double tau2 = (q - 4) / (2 * pairs / sum);

    const MARandomEffectModel model = Fitted(y, v, TAU2_DL);
    constexpr double tolerance = 1e-14;
    EXPECT_TRUE(Close(model.GetBetweenStudyVariance(), static_cast<double>(tau2), tolerance));
    EXPECT_TRUE(Close(model.GetHomogeneityTestQ(), static_cast<double>(q), tolerance));
    EXPECT_TRUE(Close(model.GetHeterogeneityTestH2(), static_cast<double>(1 + tau2 / typical), tolerance));
    EXPECT_TRUE(
        Close(model.GetHeterogeneityTestI2(), static_cast<double>(tau2 / (typical + tau2)), tolerance));
    const MAContinousFixEffectModel fixed = FixedFitted(y, v);
    EXPECT_TRUE(Close(fixed.GetHomogeneityTestQ(), static_cast<double>(q), tolerance));
    EXPECT_TRUE(Close(fixed.GetHeterogeneityTestI2(), static_cast<double>((q - 4) / q), tolerance));
}

TEST(MARandomEffectModel, UnknownEstimatorFails)
{
    const std::vector<double> effects = {0.5, -1.25, 2.0};
    const std::vector<double> variances = {0.25, 0.5, 0.125};
    MARandomEffectModel model;
    model.SetEffectSizes(&effects);
    model.SetVariances(&variances);
    EXPECT_TRUE(model.SetEstimationType(static_cast<TAU2ESTIMATOR>(7)).IsOK());
    const KXStatus failed(MAStatusCode::TAU2_FAILED);
    EXPECT_EQ(model.EstimateMeanESStats(), failed);
    EXPECT_EQ(model.SetEstimationType(TAU2_DL), failed);
    EXPECT_EQ(model.EstimateMeanESStats(), failed);
    EXPECT_EQ(model.GetEstEffectSize(), missing);
}

TEST(MARandomEffectModel, HostileInput)
{
    const auto isNumber = [](double value) { return std::isfinite(value) && value != missing; };
    for (const HostileEffects& input : hostileEffects) {
        SCOPED_TRACE(input.name);
        const MAContinousFixEffectModel fixed = FixedFitted(input.effects, input.variances);
        EXPECT_TRUE(!input.isPoolable || isNumber(fixed.GetEstMeanEffectSize()));
        // The homogeneity test is skipped unless Q is finite.
        EXPECT_EQ(isNumber(fixed.GetHomogeneityTestQ()), fixed.GetHomogeneityTestPVal() != missing);
        for (int estimator = TAU2_HE; estimator <= TAU2_EB; ++estimator) {
            for (int adjustment = KNAPP_HARTUNG_NONE; adjustment <= KNAPP_HARTUNG_TRUNCATED; ++adjustment) {
                SCOPED_TRACE(testing::Message() << estimator << ", adjustment " << adjustment);
                const MARandomEffectModel model =
                    Fitted(input.effects, input.variances, static_cast<TAU2ESTIMATOR>(estimator),
                           static_cast<KNAPPHADJTYPE>(adjustment));
                EXPECT_GE(model.GetBetweenStudyVariance(), 0.0);
                EXPECT_TRUE(!input.isPoolable || isNumber(model.GetEstEffectSize()));
                EXPECT_TRUE(!input.isPoolable || std::isfinite(model.GetEstESVariance()));
            }
        }
    }
}

TEST(MARandomEffectModel, StudyVectorsAreChecked)
{
    using C = MARandomEffectModel;
    ExpectStudyVectorsChecked({&C::SetEffectSizes, &C::SetVariances}, &C::EstimateMeanESStats,
                              MAStatusCode::INPUT_NOT_GIVEN);
}
