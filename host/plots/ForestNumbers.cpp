#include "host/plots/ForestNumbers.h"

#include "host/text/NumberText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace host {

namespace {

constexpr double LARGE = 1e6; // from here on a number is shown by two digits and a power of ten

/// The median size of the estimates; of ratios, of those that can be shown on a logarithmic axis. 0 without
/// any.
double MedianSize(const ForestScale& scale, const Forest& forest)
{
    std::vector<double> sizes;
    for (const ForestRow& row : forest.rows)
        if (row.HasInterval() && IsNumber(row.shown.estimate) &&
            (!scale.showsRatios || row.shown.estimate > 0))
            sizes.push_back(std::abs(row.shown.estimate));
    if (sizes.empty())
        return 0;
    const auto middle = sizes.begin() + static_cast<std::ptrdiff_t>(sizes.size() / 2);
    std::nth_element(sizes.begin(), middle, sizes.end());
    return *middle;
}

/// Decimals of all numbers of the column: those that suit the standard errors; for ratios as many as show two
/// digits of the median one; none for differences of hundreds of thousands.
int DecimalsOf(const ForestScale& scale, double medianSize)
{
    constexpr int MOST_DECIMALS = 6;
    if (scale.request.digits)
        return *scale.request.digits;
    const int decimals = scale.decimals - 2;
    if (!scale.showsRatios)
        return medianSize >= LARGE / 10 ? 0 : decimals;
    if (medianSize == 0)
        return decimals;
    const auto needed = static_cast<int>(1 - std::floor(std::log10(medianSize)));
    return std::clamp(needed, decimals, std::max(decimals, MOST_DECIMALS));
}

} // namespace

ForestNumbers NumbersOf(const ForestScale& scale, const Forest& forest)
{
    constexpr double LONGEST = 1e12;
    const double median = MedianSize(scale, forest);
    const bool areLarge = !scale.showsRatios && median >= LARGE / 10 && median < LONGEST / 1e3;
    return {DecimalsOf(scale, median), scale.showsRatios, areLarge ? LONGEST : LARGE};
}

std::string NumberText(double value, const ForestNumbers& numbers)
{
    const double least = std::pow(10.0, -numbers.decimals);
    if (numbers.areRatios && IsNumber(value) && value > 0 && value < least / 2)
        return "<" + FixedText(least, numbers.decimals);
    const bool isLarge = IsNumber(value) && std::abs(value) >= numbers.large;
    return WithMinusSign(isLarge ? fmt::format("{:.2g}", value) : FixedText(value, numbers.decimals));
}

} // namespace host
