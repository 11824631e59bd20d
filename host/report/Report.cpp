#include "host/report/Report.h"

#include "host/report/AnalysisData.h"
#include "host/report/FurtherSections.h"
#include "host/report/ModelSections.h"
#include "host/report/ReportParts.h"
#include "host/report/ZeroCellSentences.h"
#include "host/text/NumberText.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

#include <cstddef>
#include <map>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Texts = std::vector<std::string>;

std::string Title(const AnalysisData& data)
{
    return fmt::format("Meta-analysis: {}, {}, {} level", data.effect.name, WordingOfModel(data.settings),
                       data.level);
}

/// The group of each record.
Texts GroupsOf(const std::vector<int>& records, const AnalysisData& data)
{
    const std::vector<std::vector<int>> members = data.base.GetSubGroupStudyID();
    std::map<int, std::size_t> groups;
    for (std::size_t group = 0; group < members.size(); ++group)
        for (const int record : members[group])
            groups.emplace(record, group);
    Texts labels;
    for (const int record : records)
        labels.push_back(data.groupLabels[groups.at(record)]);
    return labels;
}

ReportSection Studies(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    const std::vector<int> records = base.GetNonMissingStudyID();
    EffectRows rows = {.ratios = {},
                       .effects = {base.GetEffectSize(), base.GetCILower(), base.GetCIUpper()},
                       .stdErrors = {},
                       .statistics = {},
                       .significances = {}};
    if (data.binary)
        rows.ratios = {data.binary->GetExpEffectSize(), data.binary->GetExpCILower(),
                       data.binary->GetExpCIUpper()};
    ReportSection section = {"Studies", {{"Study", data.StudyLabelsOf(records), true}}, {}};
    if (!data.groupLabels.empty())
        section.table.push_back({LabelText(data.request.subgroup.column), GroupsOf(records, data), true});
    AppendEffects(section.table, rows, HeadersOf(data.effect), data);
    section.table.push_back({"Weight %", TextsOf(InPercent(base.GetNormalizedWeight()),
                                                 [](double weight) { return FixedText(weight, 2); })});
    if (const std::string correction = WordingOfStudyCorrection(data); !correction.empty())
        section.sentences.push_back(correction);
    return section;
}

void Append(std::vector<ReportSection>& sections, std::vector<ReportSection> more)
{
    for (ReportSection& section : more)
        sections.push_back(std::move(section));
}

std::vector<ReportSection> AnalysisSections(const AnalysisData& data)
{
    std::vector<ReportSection> sections = {
        Studies(data),       PooledEffect(data),         PredictionInterval(data),
        Heterogeneity(data), BetweenStudyVariance(data), BetweenGroups(data)};
    Append(sections, CumulativeAnalysis(data));
    sections.push_back(Contrasts(data));
    Append(sections, TrimAndFill(data));
    sections.push_back(SmallStudyTest(data));
    sections.push_back(FunnelPlot(data));
    sections.push_back(BubblePlots(data));
    return sections;
}

} // namespace

Report MakeReport(const Options& options, const DataTable& table, const AnalysisRequest& request,
                  const Analysis& analysis)
{
    const AnalysisData data(request, analysis);
    const RecordSummary records = analysis.Records(table.RowCount());
    std::vector<ReportSection> sections = {RecordsSection(options.dataPath, records), PresetSection(options)};
    if (!records.used.empty())
        Append(sections, AnalysisSections(data));
    sections.push_back(WarningsSection(WarningsOf(data)));
    return {Title(data), WithoutEmpty(std::move(sections))};
}

} // namespace host
