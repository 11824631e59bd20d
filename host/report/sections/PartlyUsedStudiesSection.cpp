#include "host/report/ExcludedRecordsSection.h"
#include "host/report/Sections.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

namespace host {

namespace {

/// Studies of the overall model that one of the other analyses cannot use.
struct Absence
{
    std::string analysis;
    std::string column; ///< of which they have no value
    std::vector<int> records;
};

void Add(std::vector<Absence>& absences, const char* analysis, const std::string& column,
         const std::vector<int>& records)
{
    if (!records.empty())
        absences.push_back({analysis, LabelText(column), records});
}

void AddEach(std::vector<Absence>& absences, const char* analysis, const std::vector<std::string>& columns,
             const std::vector<std::vector<int>>& records)
{
    for (std::size_t i = 0; i < std::min(columns.size(), records.size()); ++i)
        Add(absences, analysis, columns[i], records[i]);
}

std::vector<Absence> AbsencesOf(const AnalysisData& data)
{
    std::vector<Absence> absences;
    Add(absences, "Subgroups", data.request.subgroup.column, data.base.GetSubgroupMissing());
    Add(absences, "Cumulative analysis", data.request.cumulative.column, data.base.GetCumulativeMissing());
    AddEach(absences, "Contrast", data.VariableLabelsOf(data.settings.GetContrastCoefIndex()),
            data.base.GetContrastMissing());
    AddEach(absences, "Bubble plot", data.VariableLabelsOf(data.request.bubbleCovariates),
            data.base.GetBubbleMissing());
    return absences;
}

/// Of one group beside studies without a group, which the library pools in no model of its own.
bool LacksGroups(const Absence& absence, const AnalysisData& data)
{
    return absence.analysis == "Subgroups" && data.groupLabels.empty() &&
           absence.records.size() < data.base.GetNonMissingStudyID().size();
}

/// The models of the groups have the studies of the cumulative steps.
bool AlsoLacksInGroups(const Absence& absence, const AnalysisData& data)
{
    return absence.analysis == "Cumulative analysis" && !data.groupLabels.empty();
}

ReportSection SectionOf(const Absence& absence, const AnalysisData& data)
{
    const std::size_t shown = std::min(absence.records.size(), MOST_SHOWN_RECORDS);
    const std::vector<int> records(absence.records.begin(),
                                   absence.records.begin() + static_cast<std::ptrdiff_t>(shown));
    ReportColumn lines = {"Line", {}};
    for (const int record : records)
        lines.cells.push_back(std::to_string(data.request.lines.Of(record)));
    ReportSection section = {
        fmt::format("{}: studies without a value of {}", absence.analysis, absence.column),
        {{"Study", data.StudyLabelsOf(records), true}, lines},
        {fmt::format("Left out: {} of the {} studies. The model of all studies has every one.",
                     absence.records.size(), data.base.GetNonMissingStudyID().size())}};
    if (LacksGroups(absence, data))
        section.sentences.push_back(
            fmt::format("The others have one value of {}: there are no groups to compare.", absence.column));
    if (AlsoLacksInGroups(absence, data))
        section.sentences.emplace_back(
            "They are left out of the pooled effects of the groups and of the test between these, too.");
    if (const std::string rest = WordingOfRest(absence.records.size()); !rest.empty())
        section.sentences.insert(section.sentences.begin(), rest);
    return section;
}

} // namespace

ReportSections PartlyUsedStudiesSection(const AnalysisData& data)
{
    ReportSections sections;
    for (const Absence& absence : AbsencesOf(data))
        sections.push_back(SectionOf(absence, data));
    return sections;
}

} // namespace host
