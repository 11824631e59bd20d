#include "support/Compare.h"
#include "support/Data.h"

#include "meta_analysis/regression/design/MADataStats.h"

using MA_NAMESPACE::DataStat;
using MA_NAMESPACE::MADataStats;

/// Far from zero sums of squares would have lost every digit of the standard deviation.
TEST(DataStat, MeanAndStandardDeviation)
{
    struct Case
    {
        Rows values; ///< with their weights
        double mean, stdDeviation;
    };
    const Case cases[] = {
        {{{1, 1}, {4, 2}, {missing, 1}}, 3, std::sqrt(3.0)},
        {{{1e9 + 1, 1}, {1e9 + 2, 1}, {1e9 + 3, 1}}, 1e9 + 2, 1},
        {{{5, 0}, {3, 2}}, 3, 0}, // the value without weight plays no part
        {{{5, 0}}, 0, 0},
        {{{1, 0.5}, {2, 0.5}}, 1.5, 0},                        // no divisor
        {{{0.1, 1}, {0.2, 1}, {-0.3, 1}}, 0, std::sqrt(0.07)}, // a mean that is rounding error
    };
    for (const Case& c : cases) {
        DataStat stat(0);
        for (const Row& value : c.values)
            stat.Update(value[0], value[1]);
        EXPECT_EQ(stat.GetMean(), c.mean);
        EXPECT_DOUBLE_EQ(stat.GetStdDeviation(), c.stdDeviation) << "of a mean of " << c.mean;
    }
    DataStat unused(-1);
    unused.Update(5.0, 1.0);
    EXPECT_EQ(unused.GetUnweightedCount(), 0.0);
}

/// Variables: dependent 0, omega weight 1, frequency weight 2, covariates 4 and 3.
TEST(MADataStats, WeighsByFrequencyAndOmegaWeight)
{
    MADataStats stats({4, 3}, -1, 1, 2, 0);
    for (const Row& row : {Row{1.0, 2.0, 1.0, 10.0, -1.0}, Row{4.0, 0.5, 2.0, 40.0, -4.0},
                           Row{9.0, 1.0, missing, 90.0, -9.0}, Row{7.0, missing, 1.0, 70.0, -7.0}})
        stats.Update(Record(row));
    EXPECT_EQ(stats.GetStatOfNthCov(0).GetMean(), -4.0);
    EXPECT_EQ(&stats.GetCovariateStat(3), &stats.GetStatOfNthCov(1));
    EXPECT_EQ(stats.GetStatOfNthCov(2).GetVariableIndex(), -1) << "no covariate";
    EXPECT_EQ(stats.GetDependentStat().GetMean(), 4.0);
    EXPECT_EQ(stats.GetWeightedDependentSum(), 16.0);
    EXPECT_EQ(stats.GetDependentW2Stat().GetMean(), 2.0);
}
