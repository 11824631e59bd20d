#include "meta_analysis/analysis/steps/MAGroupMeansTest.h"

#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/inference/MAWeightedMean.h"
#include "meta_analysis/platform/common/Square.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

using Groups = std::span<const MAPooledModel>;

/// Without an adjusted group the chi-square test is the right one.
bool CanTest(Groups groups)
{
    const auto isUsable = [](const MAPooledModel& group) {
        return group.testDf > 0.0 && group.effect.variance > 0.0 &&
               std::isfinite(1.0 / group.effect.variance);
    };
    const auto isAdjusted = [](const MAPooledModel& group) { return std::isfinite(group.testDf); };
    return groups.size() >= 2 && std::all_of(groups.begin(), groups.end(), isUsable) &&
           std::any_of(groups.begin(), groups.end(), isAdjusted);
}

/// Welch's L. A group that is not adjusted has infinite degrees of freedom, and no part in it.
double WelchSum(Groups groups, double weightSum)
{
    double sum = 0.0;
    for (const MAPooledModel& group : groups)
        sum += Square(1.0 - 1.0 / group.effect.variance / weightSum) / group.testDf;
    return sum;
}

} // namespace

MAGroupMeansTest TestGroupMeans(std::span<const MAPooledModel> groups, bool haveCommonTau2)
{
    MAGroupMeansTest test;
    if (!CanTest(groups))
        return test;
    MAWeightedMean sums;
    for (const MAPooledModel& group : groups)
        sums.Add(1.0 / group.effect.variance, group.effect.estimate);
    double q = 0.0;
    for (const MAPooledModel& group : groups)
        q += Square(group.effect.estimate - sums.Mean()) / group.effect.variance;

    const auto count = static_cast<double>(groups.size());
    test.df1 = count - 1.0;
    test.f = q / test.df1;
    test.df2 = groups.front().testDf;
    if (!haveCommonTau2) {
        const double welch = WelchSum(groups, sums.weightSum);
        test.f /= 1.0 + 2.0 * (count - 2.0) * welch / (count * count - 1.0);
        test.df2 = (count * count - 1.0) / (3.0 * welch);
    }
    if (!std::isfinite(test.f) || !std::isfinite(test.df2))
        return {};
    test.pValue = FPValue(test.f, test.df1, test.df2);
    return test;
}

} // namespace MA_NAMESPACE
