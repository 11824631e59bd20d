#include "host/report/EffectRows.h"
#include "host/report/Sections.h"
#include "host/report/ZeroCellSentences.h"
#include "host/text/NumberText.h"
#include "host/text/PlainText.h"

#include <cstddef>
#include <map>

namespace host {

namespace {

/// The group of each record; none of a study that is in no group.
std::vector<std::string> GroupsOf(const std::vector<int>& records, const AnalysisData& data)
{
    const std::vector<std::vector<int>> members = data.base.GetSubGroupStudyID();
    std::map<int, std::size_t> groups;
    for (std::size_t group = 0; group < members.size(); ++group)
        for (const int record : members[group])
            groups.emplace(record, group);
    std::vector<std::string> labels;
    labels.reserve(records.size());
    for (const int record : records)
        labels.push_back(groups.contains(record) ? data.groupLabels[groups[record]] : NO_VALUE);
    return labels;
}

} // namespace

ReportSections StudiesSection(const AnalysisData& data)
{
    const std::vector<int> records = data.base.GetNonMissingStudyID();
    ReportSection section = {"Studies", {{"Study", data.StudyLabelsOf(records), true}}, {}};
    if (!data.groupLabels.empty())
        section.table.push_back({LabelText(data.request.subgroup.column), GroupsOf(records, data), true});
    AppendEffects(section.table, StudyRows(data), HeadersOf(data.measure), data);
    section.table.push_back(
        {"Weight %", TextsOf(InPercent(data.base.GetNormalizedWeight()), [&](double weight) {
             return FixedText(weight, data.numbers.PercentDecimals(2));
         })});
    if (const std::string correction = WordingOfStudyCorrection(data); !correction.empty())
        section.sentences.push_back(correction);
    return {section};
}

} // namespace host
