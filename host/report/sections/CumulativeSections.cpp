#include "host/report/EffectRows.h"
#include "host/report/Sections.h"
#include "host/report/ZeroCellSentences.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>

#include <cstddef>

namespace host {

namespace {

/// The steps of one group, or of all studies.
ReportSection SectionOfGroup(const AnalysisData& data, std::size_t group)
{
    const ValueLabels& cumulative = data.request.cumulative;
    const std::vector<double> order = data.base.GetEstCumulative()[group];
    std::vector<std::string> values;
    values.reserve(order.size());
    for (const double value : order)
        values.push_back(LabelText(cumulative.LabelOf(value)));

    ReportSection section = {"Cumulative analysis", {}, {}};
    if (!data.groupLabels.empty())
        section.title +=
            fmt::format(": {} = {}", LabelText(data.request.subgroup.column), data.groupLabels[group]);
    section.table.push_back({"Study added", data.StudyLabelsOf(data.base.GetSubGroupStudyID()[group]), true});
    section.table.push_back({LabelText(cumulative.column), values, !cumulative.texts.empty()});
    AppendEffects(section.table, CumulativeRows(data, group), HeadersOf(data.measure), data);
    AppendCorrectionOfSteps(section.table, data, group);
    return section;
}

} // namespace

ReportSections CumulativeSections(const AnalysisData& data)
{
    ReportSections sections;
    if (data.base.GetCumEstES().empty())
        return sections;
    // With groups, the last row of the results is that of all studies, which has no steps.
    for (std::size_t group = 0; group < data.base.GetSubGroupStudyID().size(); ++group)
        sections.push_back(SectionOfGroup(data, group));
    return sections;
}

} // namespace host
