#include "meta_analysis/settings/MAModelSettings.h"

#include <gtest/gtest.h>

#include <vector>

using MA_NAMESPACE::MAModelSettings;

/// That a copy has every setting, runs show, which are of copies; here, that it has lists of its own.
TEST(MAModelSettings, CopiesAreIndependent)
{
    MAModelSettings original;
    original.SetContrastCoefIndex({5, 6});
    original.SetInputContrastCoef({1, -1});
    original.SetFunnelConTourCutoff({0.2});
    original.SetSubGroupIndex(7);
    const MAModelSettings copied = original;
    MAModelSettings assigned;
    assigned = original;
    original.SetContrastCoefIndex({});
    original.SetInputContrastCoef({});
    original.SetFunnelConTourCutoff({});
    for (const MAModelSettings& copy : {copied, assigned}) {
        EXPECT_EQ(copy.GetContrastCoefIndex(), (std::vector<int>{5, 6}));
        EXPECT_EQ(copy.GetInputContrastCoef(), (std::vector<double>{1, -1}));
        std::vector<double> cutoffs = {7, 8, 9, 10}; // must not survive
        copy.GetSetFunnelConTourCutoff(cutoffs);
        EXPECT_EQ(cutoffs, std::vector<double>{0.2});
        EXPECT_EQ(copy.GetSubGroupIndex(), 7);
    }
}
