#include "host/plots/PlotGroups.h"

#include "host/report/EffectRows.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace host {

namespace {

/// The groups with the most studies, in their order; all of them unless there are very many.
std::vector<PlotOfGroup> LargestOf(std::vector<PlotOfGroup> plots, const AnalysisData& data)
{
    if (plots.size() <= MOST_SHOWN_GROUPS)
        return plots;
    const std::vector<int> counts = data.base.GetGroupN();
    const auto countOf = [&](const PlotOfGroup& plot) { return counts[plot.number - 1]; };
    std::stable_sort(plots.begin(), plots.end(),
                     [&](const PlotOfGroup& a, const PlotOfGroup& b) { return countOf(a) > countOf(b); });
    plots.resize(MOST_SHOWN_GROUPS, plots.front());
    std::sort(plots.begin(), plots.end(),
              [](const PlotOfGroup& a, const PlotOfGroup& b) { return a.number < b.number; });
    return plots;
}

std::vector<PlotOfGroup> Groups(const AnalysisData& data, std::size_t firstRow)
{
    const std::vector<double> estimates = PooledRows(data).effects.values;
    std::vector<PlotOfGroup> plots;
    for (std::size_t group = 0; group < data.groupLabels.size(); ++group)
        plots.push_back({firstRow + group, GroupName(data, group), estimates[group], group + 1});
    return LargestOf(std::move(plots), data);
}

PlotOfGroup AllStudies(const AnalysisData& data)
{
    return {0, "", PooledRows(data).effects.values.back(), 0};
}

} // namespace

bool IsWorthAPicture(const AnalysisData& data, const PlotOfGroup& plot)
{
    return plot.number == 0 ? data.base.GetNonMissingStudyID().size() > 1
                            : data.base.GetGroupN()[plot.number - 1] > 1;
}

std::vector<PlotOfGroup> AllAndGroups(const AnalysisData& data, std::size_t rowCount)
{
    if (rowCount <= data.groupLabels.size())
        return {};
    std::vector<PlotOfGroup> plots = Groups(data, 1);
    plots.insert(plots.begin(), AllStudies(data));
    std::erase_if(plots, [&](const PlotOfGroup& plot) { return !IsWorthAPicture(data, plot); });
    return plots;
}

std::vector<PlotOfGroup> GroupsOrAll(const AnalysisData& data)
{
    if (data.groupLabels.empty())
        return {AllStudies(data)};
    return Groups(data, 0);
}

std::vector<std::size_t> StudiesOf(const AnalysisData& data, const PlotOfGroup& plot)
{
    const std::vector<int> records = data.base.GetNonMissingStudyID();
    std::vector<std::size_t> studies(records.size());
    std::iota(studies.begin(), studies.end(), 0U);
    if (plot.number == 0)
        return studies;
    std::vector<int> members = data.base.GetSubGroupStudyID()[plot.number - 1];
    std::sort(members.begin(), members.end());
    std::erase_if(studies, [&](std::size_t study) {
        return !std::binary_search(members.begin(), members.end(), records[study]);
    });
    return studies;
}

std::string SentenceOfGroupsWithoutPlots(const AnalysisData& data)
{
    const std::size_t count = data.groupLabels.size();
    return count <= MOST_SHOWN_GROUPS
               ? ""
               : fmt::format(" Of {} groups, the {} with the most studies have plots of their own.", count,
                             MOST_SHOWN_GROUPS);
}

std::string GroupName(const AnalysisData& data, std::size_t group)
{
    return fmt::format("{}: {}", LabelText(data.request.subgroup.column), data.groupLabels[group]);
}

} // namespace host
