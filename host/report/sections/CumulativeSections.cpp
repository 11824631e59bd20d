#include "host/report/EffectRows.h"
#include "host/report/Sections.h"
#include "host/report/ZeroCellSentences.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>

#include <cstddef>

namespace host {

namespace {

/// The steps of one group, or of all studies.
ReportSection SectionOfGroup(const AnalysisData& data, const CumulativeGroup& steps, std::size_t group)
{
    const ValueLabels& cumulative = data.request.cumulative;
    std::vector<std::string> values;
    values.reserve(steps.values.size());
    for (const double value : steps.values)
        values.push_back(LabelText(cumulative.LabelOf(value)));

    ReportSection section = {"Cumulative analysis", {}, {}};
    if (!data.groupLabels.empty())
        section.title +=
            fmt::format(": {} = {}", LabelText(data.request.subgroup.column), data.groupLabels[group]);
    section.table.push_back({"Study added", data.StudyLabelsOf(steps.records), true});
    section.table.push_back({LabelText(cumulative.column), values, !cumulative.texts.empty()});
    AppendEffects(section.table, steps.effects, HeadersOf(data.measure), data);
    return section;
}

} // namespace

ReportSections CumulativeSections(const AnalysisData& data)
{
    ReportSections sections;
    const std::vector<CumulativeGroup> groups = CumulativeGroups(data);
    const std::vector<ReportColumn> corrections = CorrectionsOfSteps(data);
    for (std::size_t group = 0; group < groups.size(); ++group) {
        sections.push_back(SectionOfGroup(data, groups[group], group));
        if (!corrections.empty() && !corrections[group].cells.empty())
            sections.back().table.push_back(corrections[group]);
    }
    return sections;
}

} // namespace host
