#include "support/Compare.h"
#include "support/Data.h"
#include "support/StudyVectors.h"

#include "meta_analysis/effectsize/MAContinousEffectSize.h"

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

} // namespace

/// J(m) J(m + 1) = (m - 1) / sqrt(m (m + 1)) ties all values of the correction to each other, across every
/// change of method; the reference figures fix one of them. With unit differences and deviations g is J.
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
    effectSizes.ComputeEffectSizeStatistics();
    EXPECT_EQ(effectSizes.GetEffectSizeVal().size(), studies.size());
    EXPECT_EQ(effectSizes.GetEffectSizeZVal().size(), 2 * studies.size()) << "further tests are appended";
}

TEST(MAContinousEffectSize, StudyVectorsAreChecked)
{
    using C = MAContinousEffectSize;
    ExpectStudyVectorsChecked({&C::SetTreatmentGSizes, &C::SetControlGSizes, &C::SetTreatmentGMeans,
                               &C::SetControlGMeans, &C::SetTreatmentGStdErrors, &C::SetControlGStdErrors},
                              &C::ComputeEffectSizeStatistics, MAStatusCode::LENGTH_MISMATCH);
}
