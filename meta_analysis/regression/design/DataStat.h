#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXMV.h"

#include <cmath>
#include <limits>

namespace MA_NAMESPACE {

/// Running statistics of one variable over the usable records, by the weighted update of West (1979),
/// Communications of the ACM 22, 532-535.
class META_ANALYSIS_EXPORT DataStat
{
public:
    /// `variableIndex` -1: the variable is not used, and the statistics stay at their initial values.
    explicit DataStat(int variableIndex = -1) : variableIndex_(variableIndex) {}

    /// Adds a value with its weight; a missing value is passed over. Inline, because it is called for each
    /// variable of each record.
    void Update(double value, double weight);

    int GetVariableIndex() const { return variableIndex_; }
    double GetWeightedCount() const { return weightSum_; }
    double GetUnweightedCount() const { return count_; }
    /// The largest finite double before the first value, and its negative for the maximum.
    double GetMinimum() const { return minimum_; }
    double GetMaximum() const { return maximum_; }
    double GetMean() const { return mean_; }
    /// 0 while the weights sum to 1 or less.
    double GetStdDeviation() const
    {
        return weightSum_ > 1.0 ? std::sqrt(squaredDeviations_ / (weightSum_ - 1.0)) : 0.0;
    }

    void Display() const;

private:
    int variableIndex_;
    double weightSum_ = 0.0;
    double count_ = 0.0;
    double minimum_ = std::numeric_limits<double>::max();
    double maximum_ = std::numeric_limits<double>::lowest();
    double mean_ = 0.0;
    double squaredDeviations_ = 0.0; ///< weighted
};

inline void DataStat::Update(double value, double weight)
{
    if (variableIndex_ < 0 || KXMV::IsMissing(value))
        return;
    count_ += 1.0;
    minimum_ = value < minimum_ ? value : minimum_;
    maximum_ = value > maximum_ ? value : maximum_;
    const double oldWeightSum = weightSum_;
    weightSum_ += weight;
    if (weightSum_ == 0.0)
        return;
    const double oldMean = mean_;
    const double increment = (value - oldMean) * (weight / weightSum_);
    // A mean that cancels against its increment leaves rounding error.
    constexpr double roundingError = 4.0 * std::numeric_limits<double>::epsilon();
    const double mean = oldMean + increment;
    mean_ = std::abs(mean) < roundingError * std::abs(oldMean) ? 0.0 : mean;
    squaredDeviations_ += (value - oldMean) * oldWeightSum * increment;
}

} // namespace MA_NAMESPACE
