#include "support/Compare.h"
#include "support/HostileEffects.h"
#include "support/StudyVectors.h"

#include "meta_analysis/pooling/MAContinousFixEffectModel.h"
#include "meta_analysis/pooling/MARandomEffectModel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

struct Options
{
    TAU2ESTIMATOR estimator = TAU2_REML;
    KNAPPHADJTYPE adjustment = KNAPP_HARTUNG_NONE;
    double tolerance = 1e-12;
};

MARandomEffectModel Fitted(const std::vector<double>& y, const std::vector<double>& v, Options options = {})
{
    MARandomEffectModel model;
    model.SetEffectSizes(&y);
    model.SetVariances(&v);
    model.SetEstimationType(options.estimator);
    model.SetKHAdjType(options.adjustment);
    model.SetConverTol(options.tolerance);
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

/// Heterogeneous studies of unequal precision, all values multiples of 1/64.
const std::vector<double> effects = {0.5, -1.25, 2.0, 0.015625, 1.75, -0.375, 3.25, 0.625};
const std::vector<double> variances = {0.25, 0.5, 0.125, 1, 0.75, 0.375, 0.625, 0.3125};

/// Applies `check(options)` to every estimator and adjustment.
template <class Check>
void ForAllOptions(Check check)
{
    for (int estimator = TAU2_HE; estimator <= TAU2_EB; ++estimator) {
        for (int adjustment = KNAPP_HARTUNG_NONE; adjustment <= KNAPP_HARTUNG_TRUNCATED; ++adjustment) {
            SCOPED_TRACE(testing::Message() << "estimator " << estimator << ", adjustment " << adjustment);
            check(Options{static_cast<TAU2ESTIMATOR>(estimator), static_cast<KNAPPHADJTYPE>(adjustment)});
        }
    }
}

std::vector<double> Mapped(std::vector<double> values, double factor, double summand)
{
    for (double& value : values)
        value = value * factor + summand;
    return values;
}

} // namespace

/// A power of two scales without rounding, so every result must scale exactly.
TEST(MARandomEffectModel, ScalesWithTheEffects)
{
    ForAllOptions([](const Options& options) {
        const double c = 32;
        const MARandomEffectModel model = Fitted(effects, variances, options);
        const MARandomEffectModel scaled =
            Fitted(Mapped(effects, c, 0), Mapped(variances, c * c, 0),
                   {options.estimator, options.adjustment, options.tolerance * c * c});
        EXPECT_GT(model.GetBetweenStudyVariance(), 0.0);
        EXPECT_EQ(scaled.GetBetweenStudyVariance(), c * c * model.GetBetweenStudyVariance());
        EXPECT_EQ(scaled.GetEstEffectSize(), c * model.GetEstEffectSize());
        EXPECT_EQ(scaled.GetEstESVariance(), c * c * model.GetEstESVariance());
        EXPECT_EQ(scaled.GetEstESStdError(), scaled.GetEstESVariance()); // not its root
        EXPECT_EQ(scaled.GetEstESCILower(), c * model.GetEstESCILower());
        EXPECT_EQ(scaled.GetEstESPIUpper(), c * model.GetEstESPIUpper());
        EXPECT_EQ(scaled.GetEstESTestStat(), model.GetEstESTestStat());
        EXPECT_EQ(scaled.GetEstESSig(), model.GetEstESSig());
        EXPECT_EQ(scaled.GetHomogeneityTestQ(), model.GetHomogeneityTestQ());
        EXPECT_EQ(scaled.GetHeterogeneityTestI2(), model.GetHeterogeneityTestI2());
    });
}

TEST(MARandomEffectModel, OrderAndOriginDoNotMatter)
{
    const std::vector<std::size_t> order = {6, 2, 7, 0, 5, 3, 1, 4};
    std::vector<double> permutedEffects, permutedVariances;
    for (const std::size_t i : order) {
        permutedEffects.push_back(effects[i]);
        permutedVariances.push_back(variances[i]);
    }
    // Shifted effects lose the digits of the shift; iterations end within their tolerance of each other.
    constexpr double shift = 1024;
    constexpr double tolerance = 1e-11;
    ForAllOptions([&](const Options& options) {
        const MARandomEffectModel model = Fitted(effects, variances, options);
        const MARandomEffectModel permuted = Fitted(permutedEffects, permutedVariances, options);
        const MARandomEffectModel shifted = Fitted(Mapped(effects, 1, shift), variances, options);
        const double tau2 = model.GetBetweenStudyVariance();
        EXPECT_TRUE(Close(permuted.GetBetweenStudyVariance(), tau2, tolerance));
        EXPECT_TRUE(Close(permuted.GetEstEffectSize(), model.GetEstEffectSize(), tolerance));
        EXPECT_TRUE(Close(permuted.GetEstESVariance(), model.GetEstESVariance(), tolerance));
        EXPECT_TRUE(Close(permuted.GetHomogeneityTestQ(), model.GetHomogeneityTestQ(), tolerance));
        EXPECT_TRUE(Close(permuted.GetHeterogeneityTestH2(), model.GetHeterogeneityTestH2(), tolerance));

        EXPECT_TRUE(Close(shifted.GetBetweenStudyVariance(), tau2, tolerance));
        EXPECT_TRUE(Close(shifted.GetEstEffectSize(), shift + model.GetEstEffectSize(), tolerance));
        EXPECT_TRUE(Close(shifted.GetEstESVariance(), model.GetEstESVariance(), tolerance));
        EXPECT_TRUE(Close(shifted.GetHomogeneityTestQ(), model.GetHomogeneityTestQ(), tolerance));
    });
}

TEST(MARandomEffectModel, WithoutHeterogeneityEqualsTheFixedEffectModel)
{
    const std::vector<double> y = {0.1, 0.11, 0.12, 0.1};
    const std::vector<double> v = {1, 2, 0.5, 4};
    const MAContinousFixEffectModel fixed = FixedFitted(y, v);
    for (const TAU2ESTIMATOR estimator : {TAU2_HE, TAU2_HS, TAU2_DL, TAU2_ML, TAU2_REML, TAU2_EB}) {
        const MARandomEffectModel model = Fitted(y, v, {estimator});
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
        const MARandomEffectModel adjusted = Fitted(y, v, {estimator, KNAPP_HARTUNG_ADJUSTED});
        EXPECT_DOUBLE_EQ(adjusted.GetEstESVariance(),
                         fixed.GetEstEffectSizeVariance() * fixed.GetHomogeneityTestQ() / 3);
        const MARandomEffectModel truncated = Fitted(y, v, {estimator, KNAPP_HARTUNG_TRUNCATED});
        EXPECT_EQ(truncated.GetEstESVariance(), model.GetEstESVariance());
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

    const MARandomEffectModel model = Fitted(y, v, {TAU2_DL});
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
    for (const HostileEffects& input : hostileEffects) {
        SCOPED_TRACE(input.name);
        ForAllOptions([&](const Options& options) {
            const MARandomEffectModel model = Fitted(input.effects, input.variances, options);
            const double mean = model.GetEstEffectSize();
            EXPECT_TRUE(!input.isPoolable || (std::isfinite(mean) && mean != missing));
            EXPECT_TRUE(!input.isPoolable || std::isfinite(model.GetEstESVariance()));
        });
    }
}

TEST(MARandomEffectModel, StudyVectorsAreChecked)
{
    using C = MARandomEffectModel;
    using Setter = KXStatus (C::*)(const std::vector<double>*);
    const std::vector<Setter> setters = {&C::SetEffectSizes, &C::SetVariances};
    StudyVectors<C, Setter>(setters, &C::EstimateMeanESStats, MAStatusCode::INPUT_NOT_GIVEN).ExpectChecked();
}
