#include "host/ForestRows.h"

#include "host/ModelSections.h"
#include "host/PlotAxes.h"
#include "host/PlotGroups.h"
#include "host/ReportParts.h"

#include <cstddef>
#include <map>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Kind = ForestRow::Kind;
using Rows = std::vector<ForestRow>;

ForestInterval EntryOf(const Estimates& estimates, std::size_t entry)
{
    return {estimates.values[entry], estimates.lower[entry], estimates.upper[entry]};
}

/// Only ratios have a natural scale of their own.
void SetEffect(ForestRow& row, const EffectRows& rows, std::size_t entry)
{
    row.place = EntryOf(rows.effects, entry);
    row.shown = rows.ratios.values.empty() ? row.place : EntryOf(rows.ratios, entry);
}

EffectRows StudyEffects(const ReportSource& source)
{
    const MABaseModel& base = source.base;
    EffectRows rows = {};
    rows.effects = {base.GetEffectSize(), base.GetCILower(), base.GetCIUpper()};
    if (source.binary)
        rows.ratios = {source.binary->GetExpEffectSize(), source.binary->GetExpCILower(),
                       source.binary->GetExpCIUpper()};
    return rows;
}

Rows StudyRows(const ReportSource& source)
{
    const EffectRows effects = StudyEffects(source);
    const std::vector<double> weights = source.base.GetNormalizedWeight();
    Rows rows;
    for (const std::string& label : source.StudyLabelsOf(source.base.GetNonMissingStudyID())) {
        const std::size_t study = rows.size();
        rows.push_back({Kind::STUDY, label});
        SetEffect(rows.back(), effects, study);
        rows.back().weight = weights[study];
    }
    return rows;
}

/// The rows of each group's studies.
std::vector<Rows> InBlocks(const ReportSource& source, const Rows& studies)
{
    const std::vector<int> records = source.base.GetNonMissingStudyID();
    std::map<int, std::size_t> studyOfRecord;
    for (std::size_t study = 0; study < records.size(); ++study)
        studyOfRecord[records[study]] = study;
    std::vector<Rows> blocks;
    for (const std::vector<int>& members : source.base.GetSubGroupStudyID()) {
        blocks.emplace_back();
        for (const int record : members)
            blocks.back().push_back(studies[studyOfRecord.at(record)]);
    }
    return blocks;
}

/// Of all studies; empty where there is none.
Rows PredictionRow(const ReportSource& source, const ForestRow& overall)
{
    const MABaseModel& base = source.base;
    const std::vector<double> lower = base.GetPILower();
    if (lower.empty() || !IsNumber(lower.back()))
        return {};
    ForestRow row = {Kind::PREDICTION, source.level + " prediction interval"};
    row.place = {overall.place.estimate, lower.back(), base.GetPIUpper().back()};
    row.shown = row.place;
    if (source.binary)
        row.shown = {overall.shown.estimate, source.binary->GetExpPILower().back(),
                     source.binary->GetExpPIUpper().back()};
    return {row};
}

ForestRow PooledRow(const ReportSource& source, std::size_t model, const char* label)
{
    ForestRow row = {Kind::POOLED, label};
    SetEffect(row, PooledRows(source), model);
    return row;
}

void Append(Rows& rows, Rows more)
{
    for (ForestRow& row : more)
        rows.push_back(std::move(row));
}

/// A heading, the rows and the pooled model of each group.
Rows GroupedRows(const ReportSource& source, const std::vector<Rows>& blocks)
{
    Rows rows;
    for (std::size_t group = 0; group < blocks.size(); ++group) {
        rows.push_back({Kind::HEADING, GroupName(source, group)});
        Append(rows, blocks[group]);
        rows.push_back(PooledRow(source, group, "Pooled"));
        rows.push_back({Kind::GAP});
    }
    return rows;
}

/// The models of a run with groups end with that of all studies.
ForestRow OverallRow(const ReportSource& source)
{
    return PooledRow(source, source.groupLabels.size(), "Overall");
}

std::vector<std::string> CumulativeValues(const ReportSource& source, std::size_t block)
{
    return TextsOf(source.base.GetEstCumulative()[block],
                   [&](double value) { return LabelText(source.request.cumulative.LabelOf(value)); });
}

Rows CumulativeSteps(const ReportSource& source, std::size_t block)
{
    const MABaseModel& base = source.base;
    EffectRows effects = {};
    effects.effects = {base.GetCumEstES()[block], base.GetCumEstCiLower()[block],
                       base.GetCumEstCiUpper()[block]};
    if (source.binary)
        effects.ratios = {source.binary->GetCumExpEstES()[block], source.binary->GetCumExpEstCiLower()[block],
                          source.binary->GetCumExpEstCiUpper()[block]};
    const std::vector<std::string> values = CumulativeValues(source, block);
    Rows rows;
    for (const std::string& label : source.StudyLabelsOf(base.GetSubGroupStudyID()[block])) {
        const std::size_t step = rows.size();
        rows.push_back({Kind::STUDY, "+ " + label, values[step]});
        SetEffect(rows.back(), effects, step);
    }
    return rows;
}

} // namespace

std::vector<ForestRow> ForestRows(const ReportSource& source)
{
    Rows rows = StudyRows(source);
    if (!source.groupLabels.empty())
        rows = GroupedRows(source, InBlocks(source, rows));
    rows.push_back(OverallRow(source));
    Append(rows, PredictionRow(source, rows.back()));
    return rows;
}

std::vector<ForestRow> CumulativeForestRows(const ReportSource& source)
{
    if (source.base.GetCumEstES().empty())
        return {};
    if (source.groupLabels.empty())
        return CumulativeSteps(source, 0);
    std::vector<Rows> blocks;
    for (std::size_t group = 0; group < source.groupLabels.size(); ++group)
        blocks.push_back(CumulativeSteps(source, group));
    Rows rows = GroupedRows(source, blocks);
    rows.push_back(OverallRow(source));
    return rows;
}

} // namespace host
