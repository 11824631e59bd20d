#include "meta_analysis/analysis/steps/MACumulative.h"

#include <algorithm>
#include <utility>

namespace MA_NAMESPACE {

namespace {

/// Stable, so that studies with equal values keep their order.
MASelection InOrderOf(const std::vector<double>& value, MASelection members, MAConst::SORTYPE order)
{
    if (order == MAConst::SORT_ASCENDING)
        std::stable_sort(members.begin(), members.end(),
                         [&](std::size_t a, std::size_t b) { return value[a] < value[b]; });
    else
        std::stable_sort(members.begin(), members.end(),
                         [&](std::size_t a, std::size_t b) { return value[a] > value[b]; });
    return members;
}

/// The weights in the model of all studies, which were pooled in another order.
std::vector<double> WeightsInStudyOrder(const MAStudies& studies, const MACumulativeGroup& all)
{
    std::vector<double> weights = PoolingWeights(studies, all.whole);
    for (std::size_t i = 0; i < all.whole.tableWeights.size(); ++i)
        weights[all.order[i]] = all.whole.tableWeights[i];
    return weights;
}

MACumulativeGroup AnalyseGroup(const MAStudies& studies, MASelection order, const MAModelChoice& choice,
                               KXStatus& status)
{
    MACumulativeGroup group;
    group.order = std::move(order);
    group.values = Selected(studies.cumulativeValue, group.order);
    MAPooledPrefixes prefixes = PoolPrefixes(studies, group.order, ModelOfStep(choice));
    group.steps = std::move(prefixes.rows);
    status = prefixes.status;
    if (!status.IsError()) {
        group.whole = Pool(studies, group.order, choice);
        status = group.whole.model.status;
    }
    return group;
}

} // namespace

MACumulative AnalyseCumulatively(const MAStudies& studies, const std::vector<MASelection>& groups,
                                 MAConst::SORTYPE order, const MAModelChoice& choice)
{
    MACumulative result;
    for (const MASelection& members : groups) {
        MACumulativeGroup group =
            AnalyseGroup(studies, InOrderOf(studies.cumulativeValue, members, order), choice, result.status);
        if (result.status.IsError())
            return result;
        result.groups.push_back(std::move(group));
    }
    if (groups.size() < 2 && !studies.HasUngrouped()) {
        if (!groups.empty())
            result.weights = WeightsInStudyOrder(studies, result.groups.front());
        return result;
    }
    MAPooledStudies overall = Pool(studies, choice);
    result.status = overall.model.status;
    if (!result.status.IsError()) {
        result.weights = PoolingWeights(studies, overall);
        result.overall = std::move(overall);
    }
    return result;
}

} // namespace MA_NAMESPACE
