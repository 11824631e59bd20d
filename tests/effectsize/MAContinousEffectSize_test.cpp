#include "support/Compare.h"
#include "support/Data.h"
#include "support/StudyVectors.h"

#include "meta_analysis/effectsize/MAContinousEffectSize.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace MA_NAMESPACE;

namespace {

/// Sizes, means and standard deviations in the order nt, xt, st, nc, xc, sc, as columns.
struct Groups
{
    explicit Groups(const Rows& studies) : columns(6)
    {
        for (const Row& study : studies) {
            for (std::size_t i = 0; i < columns.size(); ++i)
                columns[i].push_back(study[i]);
        }
    }

    Rows columns;
};

MAContinousEffectSize Given(const Groups& groups, MAConst::CONTESTYPE method)
{
    MAContinousEffectSize effectSizes;
    effectSizes.SetTreatmentGSizes(&groups.columns[0]);
    effectSizes.SetTreatmentGMeans(&groups.columns[1]);
    effectSizes.SetTreatmentGStdErrors(&groups.columns[2]);
    effectSizes.SetControlGSizes(&groups.columns[3]);
    effectSizes.SetControlGMeans(&groups.columns[4]);
    effectSizes.SetControlGStdErrors(&groups.columns[5]);
    effectSizes.SetEstimationMethod(method);
    return effectSizes;
}

/// Gamma(9) / (3 Gamma(8.5)): Hedges' correction for two groups of 10.
constexpr double correctionOf18 = 0.95764642702371812;

struct Case
{
    const char* name;
    MAConst::CONTESTYPE method;
    bool equalVariances;
    bool adjusted;
    int glassGroup;
    Row study;
    double effect;
    double variance;
};

const Row twoTens = {10, 3, 2, 10, 2, 2};
const Row unequal = {8, 5, 4, 12, 2, 3};
const double g = 0.5 * correctionOf18;
const Case cases[] = {
    {"d", MAConst::CONT_COHENS_D, false, false, 1, twoTens, 0.5, 0.20625},
    {"d adjusted", MAConst::CONT_COHENS_D, false, true, 1, twoTens, 0.5, 0.25 / 36 + 0.2},
    {"g", MAConst::CONT_HEDGES_G, false, false, 1, twoTens, g,
     correctionOf18* correctionOf18*(g* g / 40 + 0.2)},
    {"g adjusted", MAConst::CONT_HEDGES_G, false, true, 1, twoTens, g, g* g / 32.12 + 0.2},
    {"difference", MAConst::CONT_MEAN_DIFFERENCE, false, false, 1, twoTens, 1, 0.8},
    {"difference, unequal", MAConst::CONT_MEAN_DIFFERENCE, false, false, 1, unequal, 3, 16.0 / 8 + 9.0 / 12},
    {"difference, pooled", MAConst::CONT_MEAN_DIFFERENCE, true, false, 1, unequal, 3,
     (9.0 * 11 + 16.0 * 7) / 18 * (1.0 / 12 + 1.0 / 8)},
    {"Glass, control", MAConst::CONT_GLASS_DELTA, false, true, 1, unequal, 1, 20.0 / 96 + 1.0 / 22},
    {"Glass, treatment", MAConst::CONT_GLASS_DELTA, true, false, 0, unequal, 0.75, 20.0 / 96 + 0.5625 / 14},
    {"Glass, any other group", MAConst::CONT_GLASS_DELTA, false, false, 7, unequal, 1, 20.0 / 96 + 1.0 / 22},
};

} // namespace

TEST(MAContinousEffectSize, WorkedExamples)
{
    constexpr double quantile90 = 1.6448536269514722;
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const Groups groups({row.study});
        MAContinousEffectSize effectSizes = Given(groups, row.method);
        effectSizes.SetEqualAssumptionofVariance(row.equalVariances);
        effectSizes.SetVarianceAdjustment(row.adjusted);
        effectSizes.SetGlassDsVarianceDependent(static_cast<MAConst::STUDYGROUPTYPE>(row.glassGroup));
        effectSizes.SetSignLevel(0.1);
        ASSERT_TRUE(effectSizes.ComputeEffectSizeStatistics().IsOK());

        const double stdError = std::sqrt(row.variance);
        const double z = row.effect / stdError;
        constexpr double tolerance = 8 * machineEpsilon; // a handful of roundings
        EXPECT_TRUE(Close(effectSizes.GetEffectSizeVal().at(0), row.effect, tolerance));
        EXPECT_TRUE(Close(effectSizes.GetEffectSizeVariance().at(0), row.variance, tolerance));
        EXPECT_TRUE(Close(effectSizes.GetEffectSizeStdError().at(0), stdError, tolerance));
        EXPECT_TRUE(Close(effectSizes.GetEffectSizeZVal().at(0), z, tolerance));
        EXPECT_NEAR(effectSizes.GetEffectSizeSig().at(0), std::erfc(z / std::sqrt(2.0)), 1e-15);
        EXPECT_NEAR(effectSizes.GetEffectSizeCIUpper().at(0), row.effect + quantile90 * stdError, 1e-14);
        EXPECT_NEAR(effectSizes.GetEffectSizeCILower().at(0), row.effect - quantile90 * stdError, 1e-14);
    }
}

/// J(m) J(m + 1) = (m - 1) / sqrt(m (m + 1)) ties all values of the correction to each other, across every
/// change of method; the worked example fixes one of them. With unit differences and deviations g is J.
TEST(MAContinousEffectSize, SmallSampleCorrectionIsExactForEverySize)
{
    Rows studies;
    for (int m = 2; m <= 1000; ++m)
        studies.push_back({2, 1, 1, static_cast<double>(m), 0, 1});
    for (const double m : {1e4, 1e4 + 1, 1e7, 1e7 + 1})
        studies.push_back({2, 1, 1, m, 0, 1});
    studies.push_back({2, 1, 1, 1, 0, 1});

    const Groups groups(studies);
    MAContinousEffectSize effectSizes = Given(groups, MAConst::CONT_HEDGES_G);
    effectSizes.ComputeEffectSizeStatistics();
    const std::vector<double> corrections = effectSizes.GetEffectSizeVal();
    for (std::size_t i = 0; i + 1 < corrections.size(); ++i) {
        const double m = studies[i][3];
        if (studies[i + 1][3] != m + 1)
            continue;
        // The gamma functions of the library are good to a few units in the last place.
        EXPECT_TRUE(
            Close(corrections[i] * corrections[i + 1], (m - 1) / std::sqrt(m * (m + 1)), 32 * machineEpsilon))
            << m;
        EXPECT_LT(corrections[i], 1.0);
    }
    EXPECT_EQ(corrections.back(), 0.0); // one degree of freedom
}

/// Every column has an entry a study, or none for a method that there is not; a second computation appends
/// tests.
TEST(MAContinousEffectSize, HostileGroupsAndUnknownMethod)
{
    const Groups groups({{1, 0, 1, 1, 0, 1},
                         {10, 1, 0, 10, 1, 0},
                         {0, 1, 1, 0, 1, 1},
                         {10, notANumber, 1, 10, 0, 1},
                         {10, infinity, 1, 10, 0, infinity},
                         {1e308, 1e308, 1e308, 1e308, -1e308, 1e308},
                         {1e-308, 0, 1e-308, 1e-308, 0, 1e-308},
                         {-5, 1, -1, -5, 1, -1},
                         Row(6, missing)});
    for (int method = MAConst::CONT_MEAN_DIFFERENCE; method <= MAConst::CONT_GLASS_DELTA + 1; ++method) {
        const std::size_t count = method <= MAConst::CONT_GLASS_DELTA ? groups.columns[0].size() : 0;
        MAContinousEffectSize effectSizes = Given(groups, static_cast<MAConst::CONTESTYPE>(method));
        EXPECT_TRUE(effectSizes.ComputeEffectSizeStatistics().IsOK());
        EXPECT_TRUE(effectSizes.ComputeEffectSizeStatistics().IsOK());
        EXPECT_EQ(effectSizes.GetEffectSizeVal().size(), count);
        EXPECT_EQ(effectSizes.GetEffectSizeCIUpper().size(), count);
        EXPECT_EQ(effectSizes.GetEffectSizeZVal().size(), 2 * count);
    }
}

TEST(MAContinousEffectSize, StudyVectorsAreChecked)
{
    using C = MAContinousEffectSize;
    using Setter = KXStatus (C::*)(const std::vector<double>*);
    const std::vector<Setter> setters = {&C::SetTreatmentGSizes,     &C::SetControlGSizes,
                                         &C::SetTreatmentGMeans,     &C::SetControlGMeans,
                                         &C::SetTreatmentGStdErrors, &C::SetControlGStdErrors};
    StudyVectors<C, Setter>(setters, &C::ComputeEffectSizeStatistics, MAStatusCode::LENGTH_MISMATCH)
        .ExpectChecked();
}
