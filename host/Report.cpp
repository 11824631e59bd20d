#include "host/Report.h"

#include "host/FurtherSections.h"
#include "host/ModelSections.h"
#include "host/NumberText.h"
#include "host/ReportParts.h"
#include "host/ReportSource.h"
#include "host/Wording.h"
#include "host/ZeroCells.h"

#include <fmt/format.h>

#include <cstddef>
#include <map>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Texts = std::vector<std::string>;

std::string Title(const ReportSource& source)
{
    return fmt::format("Meta-analysis: {}, {}, {} level", source.effect.name, WordingOfModel(source.settings),
                       source.level);
}

/// The group of each record.
Texts GroupsOf(const std::vector<int>& records, const ReportSource& source)
{
    const std::vector<std::vector<int>> members = source.base.GetSubGroupStudyID();
    std::map<int, std::size_t> groups;
    for (std::size_t group = 0; group < members.size(); ++group)
        for (const int record : members[group])
            groups.emplace(record, group);
    Texts labels;
    for (const int record : records)
        labels.push_back(source.groupLabels[groups.at(record)]);
    return labels;
}

ReportSection Studies(const ReportSource& source)
{
    const MABaseModel& base = source.base;
    const std::vector<int> records = base.GetNonMissingStudyID();
    EffectRows rows = {.ratios = {},
                       .effects = {base.GetEffectSize(), base.GetCILower(), base.GetCIUpper()},
                       .stdErrors = {},
                       .statistics = {},
                       .significances = {}};
    if (source.binary)
        rows.ratios = {source.binary->GetExpEffectSize(), source.binary->GetExpCILower(),
                       source.binary->GetExpCIUpper()};
    ReportSection section = {"Studies", {{"Study", source.StudyLabelsOf(records), true}}, {}};
    if (!source.groupLabels.empty())
        section.table.push_back({LabelText(source.request.subgroup.column), GroupsOf(records, source), true});
    AppendEffects(section.table, rows, HeadersOf(source.effect), source);
    section.table.push_back({"Weight %", TextsOf(InPercent(base.GetNormalizedWeight()),
                                                 [](double weight) { return FixedText(weight, 2); })});
    if (const std::string correction = WordingOfStudyCorrection(source); !correction.empty())
        section.sentences.push_back(correction);
    return section;
}

void Append(std::vector<ReportSection>& sections, std::vector<ReportSection> more)
{
    for (ReportSection& section : more)
        sections.push_back(std::move(section));
}

std::vector<ReportSection> AnalysisSections(const ReportSource& source)
{
    std::vector<ReportSection> sections = {
        Studies(source),       PooledEffect(source),         PredictionInterval(source),
        Heterogeneity(source), BetweenStudyVariance(source), BetweenGroups(source)};
    Append(sections, CumulativeAnalysis(source));
    sections.push_back(Contrasts(source));
    Append(sections, TrimAndFill(source));
    sections.push_back(SmallStudyTest(source));
    sections.push_back(FunnelPlot(source));
    sections.push_back(BubblePlots(source));
    return sections;
}

} // namespace

Report MakeReport(const Options& options, const DataTable& table, const Request& request,
                  const Analysis& analysis)
{
    const ReportSource source(request, analysis);
    const RecordUse records = analysis.Records(table.RowCount());
    std::vector<ReportSection> sections = {RecordsSection(options.dataPath, records), PresetSection(options)};
    if (!records.used.empty())
        Append(sections, AnalysisSections(source));
    sections.push_back(WarningsSection(WarningsOf(source)));
    return {Title(source), WithoutEmpty(std::move(sections))};
}

} // namespace host
