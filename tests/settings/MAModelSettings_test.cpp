#include "meta_analysis/settings/MAModelSettings.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <vector>

using S = MA_NAMESPACE::MAModelSettings;

namespace {

struct IndexAccessors
{
    void (S::*set)(int);
    int (S::*get)() const;
};

const IndexAccessors indices[] = {
    {&S::SetTreatmentNIndex, &S::GetTreatmentNVarIndex},
    {&S::SetControlNIndex, &S::GetControlNVarIndex},
    {&S::SetTreatmentMeanIndex, &S::GetTreatmentMeanVarIndex},
    {&S::SetControlMeanIndex, &S::GetControlMeanVarIndex},
    {&S::SetTreatmentVarianceIndex, &S::GetTreatMentVarianceIndex},
    {&S::SetControlVarianceIndex, &S::GetControlVarianceIndex},
    {&S::SetTreatmentStdErrorIndex, &S::GetTreatmentStdErrorIndex},
    {&S::SetControlStdErrorIndex, &S::GetControlStdErrorIndex},
    {&S::SetTreatmentSuccessIndex, &S::GetTreatmentSuccessVarIndex},
    {&S::SetTreatmentFailureIndex, &S::GetTreatmentFailureVarIndex},
    {&S::SetControlSuccessIndex, &S::GetControlSuccessVarIndex},
    {&S::SetControlFailureIndex, &S::GetControlFailureVarIndex},
    {&S::SetInputEffectSizeIndex, &S::GetInputEffectsizeIndex},
    {&S::SetInputVarianceIndex, &S::GetInputVaranceVarIndex},
    {&S::SetInputStdErrorIndex, &S::GetInputStdErrorIndex},
    {&S::SetSubGroupIndex, &S::GetSubGroupIndex},
    {&S::SetCommulativeIndex, &S::GetCummulativeIndex},
};

} // namespace

/// Copies have every index and vector, and are independent; no index shares its place with another.
TEST(MAModelSettings, Copies)
{
    S original;
    for (std::size_t i = 0; i < std::size(indices); ++i)
        (original.*indices[i].set)(static_cast<int>(i));
    original.SetContrastCoefIndex({5, 6});
    original.SetInputContrastCoef({1, -1});
    original.SetFunnelConTourCutoff({0.2});
    const S copied = original;
    S assigned;
    assigned = original;
    original.SetContrastCoefIndex({});
    original.SetFunnelConTourCutoff({});
    for (const S& copy : {copied, assigned}) {
        for (std::size_t i = 0; i < std::size(indices); ++i)
            EXPECT_EQ((copy.*indices[i].get)(), static_cast<int>(i));
        EXPECT_EQ(copy.GetContrastCoefIndex(), (std::vector<int>{5, 6}));
        EXPECT_EQ(copy.GetInputContrastCoef(), (std::vector<double>{1, -1}));
        std::vector<double> cutoffs = {7, 8, 9, 10}; // must not survive
        copy.GetSetFunnelConTourCutoff(cutoffs);
        EXPECT_EQ(cutoffs, std::vector<double>{0.2});
    }
}
