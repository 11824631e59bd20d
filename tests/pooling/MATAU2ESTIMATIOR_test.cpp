#include "support/Compare.h"
#include "support/HostileEffects.h"
#include "support/StudyVectors.h"

#include "meta_analysis/pooling/MATAU2ESTIMATIOR.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

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

/// What every estimator is for k studies of equal variance v with variance s² of the effects.
double Tau2OfEqualVariances(TAU2ESTIMATOR type, double s2, double v, double k)
{
    const double largeSampleS2 = s2 * (k - 1) / k;
    switch (type) {
    case TAU2_SJ:
        return s2 * largeSampleS2 / (largeSampleS2 + v);
    case TAU2_HS:
    case TAU2_ML:
        return std::max(0.0, largeSampleS2 - v);
    default:
        return std::max(0.0, s2 - v);
    }
}

struct Step
{
    double value;
    double termSize; ///< of the terms of which it is the difference
};

/// The step of an iterative estimator at `tau2`, in extended precision and by sums of positive terms alone,
/// so that it is right however unequal the weights are.
Step StepAt(double tau2, TAU2ESTIMATOR type, const std::vector<double>& y, const std::vector<double>& v)
{
    const std::size_t k = y.size();
    std::vector<long double> w(k);
    long double sum = 0, mean = 0;
    for (std::size_t i = 0; i < k; ++i) {
        w[i] = 1 / (static_cast<long double>(v[i]) + tau2);
        sum += w[i];
        mean += w[i] * y[i];
    }
    mean /= sum;
    long double squares = 0, residuals = 0, weightedResiduals = 0, trace = 0, squaredTrace = 0;
    for (std::size_t i = 0; i < k; ++i) {
        long double others = 0;
        for (std::size_t j = 0; j < k; ++j) {
            if (j == i)
                continue;
            others += w[j];
            squaredTrace += w[i] * w[j] / sum * (w[i] * w[j] / sum);
        }
        trace += w[i] * others / sum;
        squaredTrace += w[i] * others / sum * (w[i] * others / sum);
        squares += w[i] * w[i];
        weightedResiduals += w[i] * w[i] * (y[i] - mean) * (y[i] - mean);
        residuals += w[i] * (y[i] - mean) * (y[i] - mean);
    }
    const auto count = static_cast<long double>(k);
    long double observed = weightedResiduals, expected = sum, information = squares;
    if (type == TAU2_REML) {
        expected = trace;
        information = squaredTrace;
    } else if (type == TAU2_EB) {
        observed = count / (count - 1) * residuals;
        expected = count;
        information = sum;
    }
    return {static_cast<double>((observed - expected) / information),
            static_cast<double>((observed + expected) / information)};
}

} // namespace

TEST(MATAU2ESTIMATIOR, EqualVariancesHaveClosedForms)
{
    for (const std::size_t k : {2U, 5U, 40U, 200001U}) {
        for (const double spread : {0.0, 0.3, 1.0, 3.0}) {
            // Effects on a ring of residues: no two neighbours alike, and a variance known exactly.
            std::vector<double> y(k);
            double sumOfSquares = 0;
            for (std::size_t i = 0; i < k; ++i) {
                const double rank = static_cast<double>(i * 7 % k) / static_cast<double>(k - 1) - 0.5;
                y[i] = 10 + spread * rank;
                sumOfSquares += spread * spread * rank * rank;
            }
            const double s2 = sumOfSquares / static_cast<double>(k - 1);
            for (const TAU2ESTIMATOR type : allEstimators) {
                SCOPED_TRACE(testing::Message() << "k " << k << ", spread " << spread << ", type " << type);
                const double v = 0.1;
                const double expected = Tau2OfEqualVariances(type, s2, v, static_cast<double>(k));
                // The last step of the iteration, and the rounding of sums of k terms.
                const double tolerance = 2e-12 + static_cast<double>(k) * machineEpsilon * s2;
                EXPECT_NEAR(Tau2(type, y, std::vector<double>(k, v)), expected, tolerance);
            }
        }
    }
}

/// The first step from the Hedges estimate, however unequal the weights. Where one dominates, the residual of
/// its study is a difference that keeps no more digits than there are beyond the dominance; no other term may
/// lose any.
TEST(MATAU2ESTIMATIOR, StepIsRightHoweverUnequalTheWeights)
{
    std::mt19937 generator(20240501);
    std::normal_distribution<double> normal;
    std::uniform_real_distribution<double> uniform(0.5, 1.5);
    for (const double dominance : {1.0, 1e3, 1e6, 1e10}) {
        for (int sample = 0; sample < 50; ++sample) {
            std::vector<double> y(6), v(6);
            for (std::size_t i = 0; i < y.size(); ++i) {
                y[i] = 0.9 * normal(generator);
                v[i] = uniform(generator) / (i == 2 ? dominance : 1.0);
            }
            const double start = Tau2(TAU2_HE, y, v);
            for (const TAU2ESTIMATOR type : {TAU2_ML, TAU2_REML, TAU2_EB}) {
                const Step step = StepAt(start, type, y, v);
                double taken = step.value;
                for (int halving = 0; halving < 6 && start + taken < 0; ++halving)
                    taken /= 2;
                const double expected = start + taken < 0 ? start : start + taken;
                EXPECT_TRUE(Close(Tau2(type, y, v, {0, 1, 5}), expected, 8 * machineEpsilon * dominance,
                                  step.termSize))
                    << "type " << type << ", dominance " << dominance << ", start " << start;
            }
        }
    }
}

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

TEST(MATAU2ESTIMATIOR, HostileInput)
{
    for (const HostileEffects& input : hostileEffects) {
        for (const TAU2ESTIMATOR type : allEstimators) {
            const double tau2 = Tau2(type, input.effects, input.variances);
            EXPECT_GE(tau2, 0.0) << input.name << ", type " << type;
            EXPECT_TRUE(!input.isPoolable || std::isfinite(tau2)) << input.name << ", type " << type;
        }
    }
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
    using Setter = KXStatus (MATAU2ESTIMATIOR::*)(const std::vector<double>*);
    const std::vector<Setter> setters = {&MATAU2ESTIMATIOR::SetEffectSizes, &MATAU2ESTIMATIOR::SetVariances};
    StudyVectors<Reml, Setter>(setters, &Reml::Compute, MAStatusCode::INPUT_NOT_GIVEN).ExpectChecked();
}
