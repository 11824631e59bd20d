#include "host/report/ReportColumns.h"

#include <fmt/format.h>

namespace host {

std::string IntervalHeader(const std::string& symbol, const std::string& level)
{
    return fmt::format("{} [{} CI]", symbol, level);
}

ReportColumn EstimateColumn(const std::string& symbol, const std::string& level, const Estimates& estimates,
                            const NumberFormat& numbers)
{
    if (!HasAnyValue(estimates.lower))
        return {symbol, TextsOf(estimates.values, numbers)};
    return {IntervalHeader(symbol, level), EstimateTexts(estimates, numbers)};
}

} // namespace host
