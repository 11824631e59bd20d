#include "support/Compare.h"
#include "support/Data.h"
#include "support/DisplayOf.h"

#include "meta_analysis/regression/MADataStats.h"

#include <random>

using MA_NAMESPACE::DataStat;
using MA_NAMESPACE::MADataStats;

/// Also far from zero, where sums of squares would have lost every digit of the standard deviation.
TEST(DataStat, EqualsTheTwoPassFormulas)
{
    constexpr std::size_t count = 1000;
    std::mt19937 generator(20240601);
    std::normal_distribution<double> normal;
    std::uniform_real_distribution<double> uniform(0.0, 3.0);
    for (const double offset : {0.0, 1e3, 1e9}) {
        DataStat stat(0);
        std::vector<double> values(count), weights(count);
        long double weightSum = 0, sum = 0, squares = 0;
        for (std::size_t i = 0; i < count; ++i) {
            values[i] = offset + normal(generator);
            weights[i] = i % 10 == 3 ? 0.0 : uniform(generator);
            stat.Update(values[i], weights[i]);
            stat.Update(missing, 1.0);
            weightSum += weights[i];
            sum += static_cast<long double>(weights[i]) * values[i];
        }
        for (std::size_t i = 0; i < count; ++i)
            squares += weights[i] * std::pow(values[i] - sum / weightSum, 2.0L);
        // Every update of the mean has an error of epsilon, and enters a deviation of about 1.
        const double tolerance = count * machineEpsilon * (1.0 + offset);
        EXPECT_EQ(stat.GetUnweightedCount(), count);
        EXPECT_TRUE(Close(stat.GetWeightedCount(), static_cast<double>(weightSum), count * machineEpsilon));
        EXPECT_NEAR(stat.GetMean(), static_cast<double>(sum / weightSum), tolerance) << offset;
        EXPECT_NEAR(stat.GetStdDeviation(), static_cast<double>(std::sqrt(squares / (weightSum - 1))),
                    tolerance)
            << offset;
    }
}

TEST(DataStat, EdgesOfTheUpdate)
{
    DataStat unused(-1);
    unused.Update(5.0, 1.0);
    EXPECT_EQ(unused.GetUnweightedCount(), 0.0);
    EXPECT_EQ(unused.GetMinimum(), std::numeric_limits<double>::max());
    EXPECT_EQ(unused.GetMaximum(), std::numeric_limits<double>::lowest());

    DataStat weightless(0);
    weightless.Update(5.0, 0.0);
    EXPECT_EQ(weightless.GetMinimum(), 5.0);
    EXPECT_EQ(weightless.GetMean(), 0.0);
    weightless.Update(3.0, 2.0);
    EXPECT_EQ(weightless.GetMean(), 3.0) << "the value without weight plays no part";
    EXPECT_EQ(DisplayOf(weightless),
              "DataStat display start; Variable index 0; Weighted number of cases 2; "
              "Unweighted number of cases 2; Minimum value 3; Maximum value 5; Mean value 3; "
              "Standard deviation 0; DataStat display end; ");

    DataStat light(0);
    light.Update(1.0, 0.5);
    light.Update(2.0, 0.5);
    EXPECT_EQ(light.GetStdDeviation(), 0.0) << "no divisor";

    DataStat cancelling(0);
    for (const double value : {0.1, 0.2, -0.3})
        cancelling.Update(value, 1.0);
    EXPECT_EQ(cancelling.GetMean(), 0.0) << "what is left of it is rounding error";
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
    for (const int none : {-1, 2})
        EXPECT_EQ(stats.GetStatOfNthCov(none).GetVariableIndex(), -1);
    EXPECT_EQ(stats.GetCovariateStat(0).GetVariableIndex(), -1) << "a variable, but no covariate";
    EXPECT_EQ(stats.GetOffsetStat().GetUnweightedCount(), 0.0);
    EXPECT_EQ(stats.GetWeightStat().GetUnweightedCount(), 2.0);
    EXPECT_EQ(stats.GetWeightStat().GetMean(), 1.0);
    EXPECT_EQ(stats.GetDependentStat().GetMean(), 4.0);
    EXPECT_EQ(stats.GetDependentW2Stat().GetMean(), 2.0);
    EXPECT_EQ(stats.GetDependentW2Stat().GetWeightedCount(), 3.0);
    EXPECT_EQ(stats.GetWeightedDependentSum(), 16.0);
    EXPECT_EQ(DisplayOf(stats),
              "MADataStats display start; Number of covariate variables 2; Covariate data statistics; " +
                  DisplayOf(stats.GetStatOfNthCov(0)) + "Covariate data statistics; " +
                  DisplayOf(stats.GetStatOfNthCov(1)) + "Offset data statistics; " +
                  DisplayOf(stats.GetOffsetStat()) + "Omega (scale) weight data statistics; " +
                  DisplayOf(stats.GetWeightStat()) +
                  "Index of the frequency weight variable 2; Dependent data statistics; " +
                  DisplayOf(stats.GetDependentStat()) +
                  "Dependent data statistics computed with 2 weights; " +
                  DisplayOf(stats.GetDependentW2Stat()) + "MADataStats display end; ");
}
