#include "host/plots/ForestRows.h"

#include "host/plots/PlotAxes.h"
#include "host/plots/PlotGroups.h"
#include "host/report/EffectRows.h"
#include "host/text/PlainText.h"

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

/// A ratio is drawn on the log scale, any other effect on its natural scale.
void SetPlace(ForestRow& row, const AnalysisData& data, const ForestInterval& onAnalysisScale)
{
    row.place = data.measure.isRatio ? onAnalysisScale : row.shown;
}

void SetEffect(ForestRow& row, const AnalysisData& data, const EffectRows& rows, std::size_t entry)
{
    const ForestInterval effect = EntryOf(rows.effects, entry);
    row.shown = rows.naturals.values.empty() ? effect : EntryOf(rows.naturals, entry);
    SetPlace(row, data, effect);
}

Rows RowsOfStudies(const AnalysisData& data)
{
    const EffectRows effects = StudyRows(data);
    const std::vector<double> weights = data.base.GetNormalizedWeight();
    Rows rows;
    for (const std::string& label : data.StudyLabelsOf(data.base.GetNonMissingStudyID())) {
        const std::size_t study = rows.size();
        rows.push_back({Kind::STUDY, label});
        SetEffect(rows.back(), data, effects, study);
        rows.back().weight = weights[study];
    }
    return rows;
}

/// The rows of each group's studies.
std::vector<Rows> InBlocks(const AnalysisData& data, const Rows& studies)
{
    const std::vector<int> records = data.base.GetNonMissingStudyID();
    std::map<int, std::size_t> studyOfRecord;
    for (std::size_t study = 0; study < records.size(); ++study)
        studyOfRecord[records[study]] = study;
    std::vector<Rows> blocks;
    for (const std::vector<int>& members : data.base.GetSubGroupStudyID()) {
        blocks.emplace_back();
        for (const int record : members)
            blocks.back().push_back(studies[studyOfRecord.at(record)]);
    }
    return blocks;
}

/// The prediction interval of all studies; empty where there is none.
Rows PredictionRow(const AnalysisData& data, const ForestRow& overall)
{
    const MABaseModel& base = data.base;
    const std::vector<double> lower = base.GetPILower();
    if (lower.empty() || !IsNumber(lower.back()))
        return {};
    ForestRow row = {Kind::PREDICTION, data.level + " prediction interval"};
    const ForestInterval predicted = {overall.place.estimate, lower.back(), base.GetPIUpper().back()};
    row.shown = predicted;
    if (data.natural)
        row.shown = {overall.shown.estimate, data.natural->predictions.lower.back(),
                     data.natural->predictions.upper.back()};
    SetPlace(row, data, predicted);
    return {row};
}

ForestRow PooledRow(const AnalysisData& data, const EffectRows& pooled, std::size_t model, const char* label)
{
    ForestRow row = {Kind::POOLED, label};
    SetEffect(row, data, pooled, model);
    return row;
}

void Append(Rows& rows, Rows more)
{
    for (ForestRow& row : more)
        rows.push_back(std::move(row));
}

/// A heading, the rows and the pooled model of each group.
Rows GroupedRows(const AnalysisData& data, const std::vector<Rows>& blocks)
{
    const EffectRows pooled = PooledRows(data);
    Rows rows;
    for (std::size_t group = 0; group < blocks.size(); ++group) {
        rows.push_back({Kind::HEADING, GroupName(data, group)});
        Append(rows, blocks[group]);
        rows.push_back(PooledRow(data, pooled, group, "Pooled"));
        rows.push_back({Kind::GAP});
    }
    return rows;
}

/// The last model of a run with groups is that of all studies.
ForestRow OverallRow(const AnalysisData& data)
{
    return PooledRow(data, PooledRows(data), data.groupLabels.size(), OVERALL);
}

Rows CumulativeSteps(const AnalysisData& data, const CumulativeGroup& group)
{
    const std::vector<std::string> labels = data.StudyLabelsOf(group.records);
    Rows rows;
    for (std::size_t step = 0; step < labels.size(); ++step) {
        rows.push_back({Kind::STUDY, "+ " + labels[step],
                        LabelText(data.request.cumulative.LabelOf(group.values[step]))});
        SetEffect(rows.back(), data, group.effects, step);
    }
    return rows;
}

} // namespace

bool IsDrawable(const ForestInterval& place)
{
    return IsNumber(place.estimate) && IsNumber(place.lower) && IsNumber(place.upper);
}

std::vector<ForestRow> ForestRows(const AnalysisData& data)
{
    Rows rows = RowsOfStudies(data);
    if (!data.groupLabels.empty())
        rows = GroupedRows(data, InBlocks(data, rows));
    rows.push_back(OverallRow(data));
    Append(rows, PredictionRow(data, rows.back()));
    return rows;
}

double OverallPlace(const AnalysisData& data)
{
    return OverallRow(data).place.estimate;
}

std::vector<ForestRow> CumulativeForestRows(const AnalysisData& data)
{
    const std::vector<CumulativeGroup> groups = CumulativeGroups(data);
    if (groups.empty())
        return {};
    if (data.groupLabels.empty())
        return CumulativeSteps(data, groups.front());
    std::vector<Rows> blocks;
    for (const CumulativeGroup& group : groups)
        blocks.push_back(CumulativeSteps(data, group));
    Rows rows = GroupedRows(data, blocks);
    rows.push_back(OverallRow(data));
    return rows;
}

} // namespace host
