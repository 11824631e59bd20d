#include "host/plots/ForestExtent.h"

#include "host/text/NumberText.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace host {

namespace {

constexpr double LONGEST_REACH = 4; // of an interval drawn in full, in typical half lengths

/// The typical half length of the studies' intervals, so that a few very long ones do not squeeze the rest.
double TypicalReach(const std::vector<ForestRow>& rows)
{
    std::vector<double> reaches;
    for (const ForestRow& row : rows)
        if (const double length = row.place.upper - row.place.lower;
            row.HasInterval() && row.place.HasLimits() && IsNumber(length))
            reaches.push_back(length / 2);
    if (reaches.empty())
        return 0;
    const auto middle = reaches.begin() + static_cast<std::ptrdiff_t>(reaches.size() / 2);
    std::nth_element(reaches.begin(), middle, reaches.end());
    return *middle;
}

} // namespace

Extent EffectExtent(const std::vector<ForestRow>& rows, bool hasNoEffect)
{
    const double reach = LONGEST_REACH * TypicalReach(rows);
    Extent extent;
    for (const ForestRow& row : rows) {
        if (!row.HasInterval() || !IsNumber(row.place.estimate))
            continue;
        extent.Cover(row.place.estimate);
        if (!row.place.HasLimits())
            continue;
        extent.Cover(std::max(row.place.lower, row.place.estimate - reach));
        extent.Cover(std::min(row.place.upper, row.place.estimate + reach));
    }
    Extent withNull = extent;
    withNull.Cover(0);
    if (hasNoEffect && !(withNull.Length() > 2 * extent.Length()))
        extent = withNull;
    extent.Pad(0.03);
    return extent;
}

Extent ExtentBetween(const std::pair<double, double>& limits, bool areRatios)
{
    if (areRatios && limits.first <= 0)
        throw UnusableInput(fmt::format("--axis-limits: {} is no ratio, which is above 0.", limits.first));
    Extent extent;
    extent.Cover(areRatios ? std::log(limits.first) : limits.first);
    extent.Cover(areRatios ? std::log(limits.second) : limits.second);
    return extent;
}

} // namespace host
