#pragma once

#include "host/report/Report.h"
#include "host/text/NumberFormat.h"

#include <string>

namespace host {

/// "OR [95% CI]".
std::string IntervalHeader(const std::string& symbol, const std::string& level);

/// The estimates with their intervals at the level, or alone where none has an interval.
ReportColumn EstimateColumn(const std::string& symbol, const std::string& level, const Estimates& estimates,
                            const NumberFormat& numbers);

/// As the data of an analysis or a meta-regression show them.
template <class Data>
ReportColumn EstimateColumn(const std::string& symbol, const Data& data, const Estimates& estimates)
{
    return EstimateColumn(symbol, data.level, estimates, data.numbers);
}

} // namespace host
