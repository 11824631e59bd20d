#include "host/PlotGroups.h"

#include "host/ModelSections.h"
#include "host/ReportParts.h"

#include <fmt/format.h>

namespace host {

namespace {

std::vector<PlotOfGroup> Groups(const ReportSource& source, std::size_t firstRow)
{
    const std::vector<double> estimates = PooledRows(source).effects.values;
    std::vector<PlotOfGroup> plots;
    for (std::size_t group = 0; group < source.groupLabels.size(); ++group)
        plots.push_back({firstRow + group, GroupName(source, group), estimates[group], group + 1});
    return plots;
}

PlotOfGroup AllStudies(const ReportSource& source)
{
    return {0, "", PooledRows(source).effects.values.back(), 0};
}

} // namespace

std::vector<PlotOfGroup> AllAndGroups(const ReportSource& source, std::size_t rowCount)
{
    if (rowCount <= source.groupLabels.size())
        return {};
    std::vector<PlotOfGroup> plots = Groups(source, 1);
    plots.insert(plots.begin(), AllStudies(source));
    return plots;
}

std::vector<PlotOfGroup> GroupsOrAll(const ReportSource& source)
{
    if (source.groupLabels.empty())
        return {AllStudies(source)};
    return Groups(source, 0);
}

std::string GroupName(const ReportSource& source, std::size_t group)
{
    return fmt::format("{}: {}", LabelText(source.request.subgroup.column), source.groupLabels[group]);
}

} // namespace host
