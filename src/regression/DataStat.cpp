#include "meta_analysis/regression/DataStat.h"

#include "meta_analysis/platform/common/KXDisplay_940.h"
#include "meta_analysis/platform/common/KXMV.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

void DataStat::Update(double value, double weight)
{
    if (variableIndex_ < 0 || KXMV::IsMissing(value))
        return;
    const double oldWeightSum = weightSum_;
    const double oldMean = mean_;
    count_ += 1.0;
    minimum_ = std::min(minimum_, value);
    maximum_ = std::max(maximum_, value);
    weightSum_ += weight;
    if (weightSum_ == 0.0)
        return;
    const double increment = (value - oldMean) * (weight / weightSum_);
    mean_ = oldMean + increment;
    // What is left of a mean that cancels against its increment is rounding error.
    if (std::abs(mean_) < 4.0 * std::abs(oldMean) * std::numeric_limits<double>::epsilon())
        mean_ = 0.0;
    squaredDeviations_ += (value - oldMean) * oldWeightSum * increment;
    if (weightSum_ > 1.0)
        stdDeviation_ = std::sqrt(squaredDeviations_ / (weightSum_ - 1.0));
}

void DataStat::Display() const
{
    KXDisplay_940::DisplayText("DataStat display start");
    KXDisplay_940::DisplayI("Variable index", variableIndex_);
    KXDisplay_940::DisplayDF("Weighted number of cases", weightSum_);
    KXDisplay_940::DisplayDF("Unweighted number of cases", count_);
    KXDisplay_940::DisplayDF("Minimum value", minimum_);
    KXDisplay_940::DisplayDF("Maximum value", maximum_);
    KXDisplay_940::DisplayDF("Mean value", mean_);
    KXDisplay_940::DisplayDF("Standard deviation", stdDeviation_);
    KXDisplay_940::DisplayText("DataStat display end");
}

} // namespace MA_NAMESPACE
