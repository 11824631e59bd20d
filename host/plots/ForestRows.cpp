#include "host/plots/ForestRows.h"

#include "host/plots/PlotAxes.h"
#include "host/plots/PlotGroups.h"
#include "host/report/EffectRows.h"
#include "host/text/PlainText.h"

#include <cstddef>
#include <map>
#include <set>
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

ForestRow PooledRow(const AnalysisData& data, std::size_t model, const char* label)
{
    ForestRow row = {Kind::POOLED, label};
    SetEffect(row, data, PooledRows(data), model);
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
    Rows rows;
    for (std::size_t group = 0; group < blocks.size(); ++group) {
        rows.push_back({Kind::HEADING, GroupName(data, group)});
        Append(rows, blocks[group]);
        rows.push_back(PooledRow(data, group, "Pooled"));
        rows.push_back({Kind::GAP});
    }
    return rows;
}

/// The last model is that of all studies.
ForestRow OverallRow(const AnalysisData& data)
{
    return PooledRow(data, PooledRows(data).effects.values.size() - 1, OVERALL);
}

/// The studies that are in no group, as a block of their own without a pooled row.
Rows UngroupedRows(const AnalysisData& data, const Rows& studies)
{
    std::set<int> grouped;
    for (const std::vector<int>& members : data.base.GetSubGroupStudyID())
        grouped.insert(members.begin(), members.end());
    const std::vector<int> records = data.base.GetNonMissingStudyID();
    Rows rows;
    for (std::size_t study = 0; study < records.size(); ++study)
        if (!grouped.contains(records[study]))
            rows.push_back(studies[study]);
    if (!rows.empty()) {
        rows.insert(rows.begin(), {Kind::HEADING, "In no group"});
        rows.push_back({Kind::GAP});
    }
    return rows;
}

std::vector<std::string> CumulativeValues(const AnalysisData& data, std::size_t block)
{
    return TextsOf(data.base.GetEstCumulative()[block],
                   [&](double value) { return LabelText(data.request.cumulative.LabelOf(value)); });
}

Rows CumulativeSteps(const AnalysisData& data, std::size_t block)
{
    const EffectRows effects = CumulativeRows(data, block);
    const std::vector<std::string> values = CumulativeValues(data, block);
    Rows rows;
    for (const std::string& label : data.StudyLabelsOf(data.base.GetSubGroupStudyID()[block])) {
        const std::size_t step = rows.size();
        rows.push_back({Kind::STUDY, "+ " + label, values[step]});
        SetEffect(rows.back(), data, effects, step);
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
    if (!data.groupLabels.empty()) {
        const Rows ungrouped = UngroupedRows(data, rows);
        rows = GroupedRows(data, InBlocks(data, rows));
        Append(rows, ungrouped);
    }
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
    if (data.base.GetCumEstES().empty())
        return {};
    if (data.base.GetSubGroupStudyID().empty()) // no study has a value of the order
        return {};
    if (data.groupLabels.empty())
        return CumulativeSteps(data, 0);
    std::vector<Rows> blocks;
    for (std::size_t group = 0; group < data.groupLabels.size(); ++group)
        blocks.push_back(CumulativeSteps(data, group));
    Rows rows = GroupedRows(data, blocks);
    rows.push_back(OverallRow(data));
    return rows;
}

} // namespace host
