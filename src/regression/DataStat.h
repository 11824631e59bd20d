#pragma once

#include "meta_analysis/platform/common/Export.h"

#include <limits>

namespace MA_NAMESPACE {

/// Running statistics of one variable over the usable records, by the weighted update of West (1979),
/// Communications of the ACM 22, 532-535.
class META_ANALYSIS_EXPORT DataStat
{
public:
    /// `variableIndex` -1: the variable is not used, and the statistics stay at their initial values.
    explicit DataStat(int variableIndex = -1) : variableIndex_(variableIndex) {}

    /// Takes up a value with its weight; a missing value is passed over.
    void Update(double value, double weight);

    int GetVariableIndex() const { return variableIndex_; }
    double GetWeightedCount() const { return weightSum_; }
    double GetUnweightedCount() const { return count_; }
    /// The largest finite double before the first value, and its negative for the maximum.
    double GetMinimum() const { return minimum_; }
    double GetMaximum() const { return maximum_; }
    double GetMean() const { return mean_; }
    /// 0 while the weights sum to 1 or less.
    double GetStdDeviation() const { return stdDeviation_; }

    void Display() const;

private:
    int variableIndex_;
    double weightSum_ = 0.0;
    double count_ = 0.0;
    double minimum_ = std::numeric_limits<double>::max();
    double maximum_ = std::numeric_limits<double>::lowest();
    double mean_ = 0.0;
    double stdDeviation_ = 0.0;
    double squaredDeviations_ = 0.0; ///< weighted
};

} // namespace MA_NAMESPACE
