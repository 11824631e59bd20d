#include "meta_analysis/analysis/steps/MASubgroups.h"

#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/inference/MAWeightedMean.h"
#include "meta_analysis/pooling/MACommonTau2.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace MA_NAMESPACE {

namespace {

/// Sums over a group's studies with the weights 1 / (tau² + variance).
MAWeightedMean SumsOf(const MAStudies& studies, const MASelection& group, double tau2)
{
    MAWeightedMean sums;
    for (const std::size_t study : group)
        sums.Add(1.0 / (tau2 + studies.variance[study]), studies.effectSize[study]);
    return sums;
}

/// One model per group.
MASubgroups PoolApart(const MAStudies& studies, const std::vector<MASelection>& groups,
                      const MAModelChoice& choice)
{
    MASubgroups result;
    for (const MASelection& group : groups) {
        MAPooledStudies pooled = Pool(studies, group, choice);
        result.status = pooled.model.status;
        if (result.status.IsError())
            return result;
        result.groups.push_back(std::move(pooled));
    }
    return result;
}

/// The columns of the groups, one behind the other.
MASubgroups PoolTogether(const MAStudies& studies, const std::vector<MASelection>& groups,
                         const MAModelChoice& choice)
{
    std::vector<std::vector<double>> columns;
    columns.reserve(2 * groups.size());
    std::vector<MAEffects> effects;
    for (const MASelection& group : groups) {
        columns.push_back(Selected(studies.effectSize, group));
        columns.push_back(Selected(studies.variance, group));
        effects.push_back({columns[columns.size() - 2], columns.back()});
    }
    MASubgroups result;
    for (const MAPooledModel& model : PoolWithCommonTau2(effects, choice.random)) {
        result.status = model.status;
        if (result.status.IsError())
            return result;
        result.groups.push_back({model, 0, {}});
    }
    return result;
}

} // namespace

std::vector<double> GroupValuesOf(const MAStudies& studies)
{
    std::vector<double> values;
    values.reserve(studies.groupValue.size());
    for (std::size_t study = 0; study < studies.groupValue.size(); ++study)
        if (studies.IsGrouped(study))
            values.push_back(studies.groupValue[study]);
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    return values;
}

/// One search per study among the distinct values.
std::vector<MASelection> MembersByGroup(const MAStudies& studies, const std::vector<double>& groupValues)
{
    std::vector<MASelection> members(groupValues.size());
    const std::size_t count = std::min(studies.Count(), studies.groupValue.size());
    if (members.size() == 1)
        members.front().reserve(count);
    for (std::size_t study = 0; study < count; ++study) {
        const double value = studies.groupValue[study];
        const auto group = std::lower_bound(groupValues.begin(), groupValues.end(), value);
        if (group != groupValues.end() && *group == value && studies.IsGrouped(study))
            members[static_cast<std::size_t>(group - groupValues.begin())].push_back(study);
    }
    return members;
}

MABetweenGroups TestBetweenGroups(const MAStudies& studies, const std::vector<MASelection>& groups,
                                  MAConst::MODELTYPE type, const std::vector<double>& tau2,
                                  const MABetweenGroups& before)
{
    const bool isRandom = type == MAConst::MODEL_RANDOM;
    MABetweenGroups test = before;
    std::vector<MAWeightedMean> sums;
    MAWeightedMean total;
    for (std::size_t g = 0; g < groups.size(); ++g) {
        if (isRandom && (g >= tau2.size() || KXMV::IsMissing(tau2[g])))
            return test;
        sums.push_back(SumsOf(studies, groups[g], isRandom ? tau2[g] : 0.0));
        total.weightSum += sums[g].weightSum;
        total.weightedSum += sums[g].weightedSum;
    }
    for (const MAWeightedMean& group : sums)
        test.q += group.weightSum * (group.Mean() - total.Mean()) * (group.Mean() - total.Mean());
    test.df = static_cast<int>(groups.size()) - 1;
    if (std::isfinite(test.q))
        test.pValue = ChiSquarePValue(test.q, test.df);
    return test;
}

MASubgroups AnalyseSubgroups(const MAStudies& studies, const std::vector<MASelection>& groups,
                             const MAModelChoice& choice)
{
    const bool isCommon = choice.hasCommonTau2 && choice.type != MAConst::MODEL_FIXED;
    MASubgroups result =
        isCommon ? PoolTogether(studies, groups, choice) : PoolApart(studies, groups, choice);
    if (result.status.IsError())
        return result;
    MAPooledStudies overall = Pool(studies, choice);
    result.status = overall.model.status;
    if (!result.status.IsError())
        result.overall = std::move(overall);
    return result;
}

} // namespace MA_NAMESPACE
