// Cumulative analysis: the pooled model after each further study.

#include "meta_analysis/analysis/MABaseModel.h"
#include "meta_analysis/analysis/models/InverseVarianceBuilder.h"
#include "meta_analysis/settings/Guarded.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>

namespace MA_NAMESPACE {

KXStatus MABaseModel::BuildCumulativeModel()
{
    InverseVarianceBuilder builder(*this);
    return Guarded(status_, [&] { return BuildCumulative(builder); });
}

KXStatus MABaseModel::BuildCumulative(MAModelBuilder& builder)
{
    if (!HasGroupValues() || studies_.cumulativeValue.size() != studies_.Count())
        return SetError(MAStatusCode::LENGTH_MISMATCH);
    for (const MASelection& members : MembersByGroup()) {
        ResetEstESStat(false);
        const MASelection ordered = InCumulativeOrder(members);
        AppendGroup(ordered);
        if (builder.BuildPrefixes(ordered).IsError())
            return status_;
        const KXStatus tested = builder.BuildTest(ordered);
        RequireMemory(tested);
        if (!tested.IsError())
            groupSizes_.push_back(static_cast<int>(ordered.size()));
        cumulativeOrder_.push_back(Selected(studies_.cumulativeValue, ordered));
        PushCumuStatistics();
    }
    return HasGroups() ? BuildCumulativeOverall(builder) : status_;
}

/// The test between the groups reads one between-study variance per group, which the resets leave in place.
KXStatus MABaseModel::BuildCumulativeOverall(MAModelBuilder& builder)
{
    ComputeCochranStatistics();
    ResetEstESStat(false);
    groupValues_.push_back(overallGroup);
    if (builder.BuildAll().IsError())
        return status_;
    cumulativeOrder_.emplace_back();
    PushCumuStatistics();
    if (studies_.Count() > 1)
        builder.BuildTest(AllStudies());
    return status_;
}

/// Stable, so that studies with equal values keep their order.
MASelection MABaseModel::InCumulativeOrder(MASelection members) const
{
    const std::vector<double>& value = studies_.cumulativeValue;
    if (settings_->GetSortType() == MAConst::SORT_ASCENDING)
        std::stable_sort(members.begin(), members.end(),
                         [&](std::size_t a, std::size_t b) { return value[a] < value[b]; });
    else
        std::stable_sort(members.begin(), members.end(),
                         [&](std::size_t a, std::size_t b) { return value[a] > value[b]; });
    return members;
}

} // namespace MA_NAMESPACE
