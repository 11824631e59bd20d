#include "meta_analysis/analysis/studies/MAStudies.h"

#include <numeric>

namespace MA_NAMESPACE {

namespace {

template <class T>
void Compact(const std::vector<bool>& kept, std::vector<T>& column)
{
    if (column.size() != kept.size())
        return;
    std::size_t next = 0;
    for (std::size_t i = 0; i < column.size(); ++i) {
        if (kept[i])
            column[next++] = column[i];
    }
    column.resize(next);
}

} // namespace

void MAStudies::Keep(const std::vector<bool>& kept)
{
    const auto compact = [&](auto&... columns) { (Compact(kept, columns), ...); };
    compact(recordNumber, sampleSize, tables, means, rates, addedToCounts, effectConversions,
            groupConversions, effectSize, variance, tests, ratios, groupValue, cumulativeValue, isGrouped);
    for (std::vector<double>& column : contrastCoefficients)
        Compact(kept, column);
    groupOutcomes.clear();
}

MASelection AllOf(const MAStudies& studies)
{
    MASelection all(studies.Count());
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
}

} // namespace MA_NAMESPACE
