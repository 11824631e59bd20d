#include "support/Compare.h"

#include "meta_analysis/platform/regression/FactorLevel.h"
#include "meta_analysis/platform/regression/KXFactorCounts.h"

namespace {

constexpr int MAX_INT = std::numeric_limits<int>::max();

KXFactorCounts CountsOf(const std::vector<std::vector<double>>& rows, int frequencyVariable,
                        int dependentVariable)
{
    KXFactorCounts counts({0, 1, 1}, {3, MAX_INT}, frequencyVariable, dependentVariable);
    for (const std::vector<double>& row : rows)
        counts.Update(Record(row));
    return counts;
}

} // namespace

TEST(FactorLevel, IsTheNearestIntegerOrNone)
{
    EXPECT_EQ(FactorLevel(-0.0), 0);
    EXPECT_EQ(FactorLevel(2.4), 2);
    EXPECT_EQ(FactorLevel(2.5), 3);
    EXPECT_EQ(FactorLevel(2147483646.9), MAX_INT);
    for (const double none : {-1e-300, -0.3, 2147483648.0, 1e300, infinity, notANumber, missing})
        EXPECT_EQ(FactorLevel(none), -1) << none;
}

TEST(KXFactorCounts, CountsRecordsByLevelOfEachFactor)
{
    const KXFactorCounts counts =
        CountsOf({{2.0, 7.0}, {1.6, 2e9}, {3.0, 7.0}, {-1.0, 7.0}, {notANumber, 7.2}, {2.0}}, -1, -1);
    EXPECT_EQ(counts.GetCount(0, 2), 3.0);
    EXPECT_EQ(counts.GetCount(0, 3), 0.0) << "beyond the factor's size";
    EXPECT_EQ(counts.GetCount(0, -1), 0.0);
    EXPECT_EQ(counts.GetCount(1, 7), 4.0);
    EXPECT_EQ(counts.GetCount(1, 2000000000), 1.0) << "costs no more memory than level 0";
    EXPECT_EQ(counts.GetCount(2, 7), 0.0) << "the third factor has no size";
    EXPECT_EQ(counts.GetCount(3, 7), 0.0) << "no such factor";
    EXPECT_EQ(counts.GetCount(-1, 7), 0.0) << "no such factor";
}

TEST(KXFactorCounts, WeightsByFrequencyAndSkipsRecordsWithoutDependent)
{
    // Two factors, the frequency, the dependent.
    const KXFactorCounts counts = CountsOf({{1.0, 0.0, 2.5, 9.0},
                                            {1.0, 0.0, 4.0, -9.0},
                                            {1.0, 0.0, 100.0, missing},
                                            {1.0, 0.0, missing, 9.0},
                                            {1.0, 0.0, notANumber, 9.0},
                                            {1.0, 0.0, -1.0, 9.0},
                                            {1.0, 0.0, 100.0}},
                                           2, 3);
    EXPECT_EQ(counts.GetCount(0, 1), 6.5);
    EXPECT_EQ(counts.GetCount(1, 0), 6.5);
}
