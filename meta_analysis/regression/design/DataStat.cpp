#include "meta_analysis/regression/design/DataStat.h"

#include "meta_analysis/platform/common/KXDisplay_940.h"

namespace MA_NAMESPACE {

void DataStat::Display() const
{
    KXDisplay_940::DisplayText("DataStat display start");
    KXDisplay_940::DisplayI("Variable index", variableIndex_);
    KXDisplay_940::DisplayDF("Weighted number of cases", weightSum_);
    KXDisplay_940::DisplayDF("Unweighted number of cases", count_);
    KXDisplay_940::DisplayDF("Minimum value", minimum_);
    KXDisplay_940::DisplayDF("Maximum value", maximum_);
    KXDisplay_940::DisplayDF("Mean value", mean_);
    KXDisplay_940::DisplayDF("Standard deviation", GetStdDeviation());
    KXDisplay_940::DisplayText("DataStat display end");
}

} // namespace MA_NAMESPACE
