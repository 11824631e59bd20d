#include "support/Compare.h"
#include "support/Data.h"

#include "meta_analysis/effectsize/MAContinousEffectSize.h"

#include <numeric>

using namespace MA_NAMESPACE;

/// J(m) J(m + 1) = (m - 1) / sqrt(m (m + 1)) ties all values of the correction to each other, across every
/// change of method; the reference figures fix one of them. With unit differences and deviations g is J.
TEST(MAContinousEffectSize, SmallSampleCorrectionIsExactForEverySize)
{
    Row sizes(999);
    std::iota(sizes.begin(), sizes.end(), 2.0);
    sizes.insert(sizes.end(), {1e4, 1e4 + 1, 1e7, 1e7 + 1, 1.0});
    const Row ones(sizes.size(), 1.0);
    const Row twos(sizes.size(), 2.0);
    const Row zeros(sizes.size());
    MAContinousEffectSize effectSizes;
    effectSizes.SetTreatmentGSizes(&twos);
    effectSizes.SetTreatmentGMeans(&ones);
    effectSizes.SetTreatmentGStdErrors(&ones);
    effectSizes.SetControlGSizes(&sizes);
    effectSizes.SetControlGMeans(&zeros);
    effectSizes.SetControlGStdErrors(&ones);
    effectSizes.SetEstimationMethod(MAConst::CONT_HEDGES_G);
    effectSizes.ComputeEffectSizeStatistics();
    const Row corrections = effectSizes.GetEffectSizeVal();
    for (std::size_t i = 0; i + 1 < corrections.size(); ++i) {
        const double m = sizes[i];
        if (sizes[i + 1] != m + 1)
            continue;
        // The gamma functions of the library are good to a few units in the last place.
        EXPECT_TRUE(
            Close(corrections[i] * corrections[i + 1], (m - 1) / std::sqrt(m * (m + 1)), 32 * machineEpsilon))
            << m;
        EXPECT_LT(corrections[i], 1.0);
    }
    EXPECT_EQ(corrections.back(), 0.0); // one degree of freedom
    effectSizes.ComputeEffectSizeStatistics();
    EXPECT_EQ(effectSizes.GetEffectSizeVal().size(), sizes.size());
    EXPECT_EQ(effectSizes.GetEffectSizeZVal().size(), 2 * sizes.size()) << "further tests are appended";
}
