#include "host/plots/ForestRows.h"

#include "host/plots/ForestTexts.h"
#include "host/plots/PlotAxes.h"
#include "host/plots/PlotGroups.h"
#include "host/report/EffectRows.h"
#include "host/text/PlainText.h"
#include "host/text/Wording.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <map>
#include <optional>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Kind = ForestRow::Kind;
using Rows = std::vector<ForestRow>;

/// Of a study.
std::size_t RecordOf(const ForestRow& row)
{
    return static_cast<std::size_t>(row.records.front());
}

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

/// The weights by record of the model of the other kind.
std::map<int, double> WeightsByRecord(const std::optional<AnalysisData>& data)
{
    std::map<int, double> weights;
    if (!data)
        return weights;
    const std::vector<int> records = data->base.GetNonMissingStudyID();
    const std::vector<double> normalized = data->base.GetNormalizedWeight();
    for (std::size_t study = 0; study < records.size(); ++study)
        weights[records[study]] = normalized[study];
    return weights;
}

Rows RowsOfStudies(const AnalysisData& data)
{
    const EffectRows effects = StudyRows(data);
    const std::vector<double> weights = data.base.GetNormalizedWeight();
    const std::vector<int> records = data.base.GetNonMissingStudyID();
    const std::map<int, double> otherWeights = WeightsByRecord(OtherModelOf(data));
    Rows rows;
    for (const std::string& label : data.StudyLabelsOf(records)) {
        const std::size_t study = rows.size();
        rows.push_back({Kind::STUDY, label});
        SetEffect(rows.back(), data, effects, study);
        rows.back().weight = weights[study];
        rows.back().records = {records[study]};
        if (const auto other = otherWeights.find(records[study]); other != otherWeights.end())
            rows.back().otherWeight = other->second;
    }
    return rows;
}

/// The key of --forest-sort: smaller ones come first. Missing ones come last.
double SortKey(const ForestRow& row, const ForestRequest& request)
{
    const std::string& sort = request.options.forestSort;
    const double key = !request.ranks.empty() ? static_cast<double>(request.ranks[RecordOf(row)])
                       : sort == "effect"     ? row.place.estimate
                       : sort == "weight"     ? -row.weight
                                              : 0;
    return HasValue(key) ? key : std::numeric_limits<double>::infinity();
}

void Sort(Rows& studies, const ForestRequest& request)
{
    std::stable_sort(studies.begin(), studies.end(), [&](const ForestRow& one, const ForestRow& other) {
        return SortKey(one, request) < SortKey(other, request);
    });
}

/// The rows of each group's studies, then those of studies that are in no group.
std::vector<Rows> InBlocks(const AnalysisData& data, Rows studies)
{
    std::map<int, std::size_t> blockOfRecord;
    const std::vector<std::vector<int>> groups = data.base.GetSubGroupStudyID();
    for (std::size_t group = 0; group < groups.size(); ++group)
        for (const int record : groups[group])
            blockOfRecord[record] = group;
    std::vector<Rows> blocks(groups.size() + 1);
    for (ForestRow& study : studies) {
        const auto found = blockOfRecord.find(study.records.front());
        blocks[found == blockOfRecord.end() ? groups.size() : found->second].push_back(std::move(study));
    }
    return blocks;
}

void Append(Rows& rows, Rows more)
{
    for (ForestRow& row : more)
        rows.push_back(std::move(row));
}

/// A row of what a model pools.
ForestRow PooledRow(const AnalysisData& data, std::size_t model, const std::string& label)
{
    ForestRow row = {Kind::POOLED, label};
    SetEffect(row, data, PooledRows(data), model);
    row.weight = KXMV::Missing();
    return row;
}

/// Sums what the model pools of the studies.
void SetPooled(ForestRow& row, const Rows& studies)
{
    row.weight = 0;
    row.otherWeight = 0;
    for (const ForestRow& study : studies) {
        row.weight += HasValue(study.weight) ? study.weight : 0;
        row.otherWeight += HasValue(study.otherWeight) ? study.otherWeight : 0;
        row.records.insert(row.records.end(), study.records.begin(), study.records.end());
    }
}

const ForestStyle& StyleOf(const AnalysisData& data)
{
    return host::StyleOf(data.request.forest.options.layout);
}

std::string ModelLabel(const AnalysisData& data)
{
    return IsRandom(data.settings) ? "Random-effects model" : "Fixed-effect model";
}

/// The estimates of one model, or of both kinds of it, the fixed effect first.
Rows PooledRowsOf(const AnalysisData& data, std::size_t model, const char* label, const Rows& studies)
{
    Rows rows = {PooledRow(data, model, WithNames(label, NamesOfEffect(data)))};
    SetPooled(rows.front(), studies);
    const std::optional<AnalysisData> other = OtherModelOf(data);
    if (!other || model >= PooledRows(*other).effects.values.size())
        return rows;
    rows.front().label = ModelLabel(data);
    rows.push_back(PooledRow(*other, model, ModelLabel(*other)));
    rows.back().records = rows.front().records;
    std::swap(rows.front().otherWeight, rows.back().otherWeight);
    if (IsRandom(data.settings))
        std::swap(rows.front(), rows.back());
    return rows;
}

/// The prediction interval of all studies; empty where there is none.
Rows PredictionRow(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    const std::vector<double> lower = base.GetPILower();
    const bool isWanted = data.request.forest.options.prediction != PredictionLook::NONE;
    if (!isWanted || lower.empty() || !IsNumber(lower.back()))
        return {};
    const ForestRow overall = OverallRow(data);
    ForestRow row = {Kind::PREDICTION, data.level + " prediction interval"};
    const ForestInterval predicted = {overall.place.estimate, lower.back(), base.GetPIUpper().back()};
    row.shown = predicted;
    if (data.natural)
        row.shown = {overall.shown.estimate, data.natural->predictions.lower.back(),
                     data.natural->predictions.upper.back()};
    SetPlace(row, data, predicted);
    return {row};
}

/// A heading, the rows, and what `makeEnd` makes of the group.
template <class MakeEnd>
Rows GroupedRows(const AnalysisData& data, const std::vector<Rows>& blocks, const MakeEnd& makeEnd)
{
    const EffectRows pooled = PooledRows(data);
    Rows rows;
    for (std::size_t group = 0; group < data.groupLabels.size(); ++group) {
        rows.push_back({Kind::HEADING, GroupName(data, group)});
        Append(rows, blocks[group]);
        Append(rows, makeEnd(group));
        rows.push_back({Kind::GAP});
    }
    return rows;
}

/// The pooled models of a group and their heterogeneity.
Rows EndOfGroup(const AnalysisData& data, std::size_t group, const Rows& studies)
{
    Rows rows = PooledRowsOf(data, group, StyleOf(data).pooled, studies);
    const std::optional<AnalysisData> other = OtherModelOf(data);
    const bool isOtherRandom = other && IsRandom(other->settings); // which has tau²
    const std::string note = HeterogeneityText(isOtherRandom ? *other : data, group);
    if (!note.empty())
        rows.push_back({Kind::NOTE, note});
    return rows;
}

Rows RowsWithoutGroup(const AnalysisData& data, const Rows& studies)
{
    if (studies.empty())
        return {};
    Rows rows = {{Kind::HEADING, LabelText(data.request.subgroup.column) + ": not known"}};
    Append(rows, studies);
    rows.push_back({Kind::GAP});
    return rows;
}

Rows CumulativeSteps(const AnalysisData& data, const CumulativeGroup& group)
{
    return TextsOf(data.base.GetEstCumulative()[block],
                   [&](double value) { return LabelText(data.request.cumulative.LabelOf(value)); });
}

Rows CumulativeSteps(const AnalysisData& data, std::size_t block)
{
    const EffectRows effects = CumulativeRows(data, block);
    const std::vector<std::string> values = CumulativeValues(data, block);
    const std::vector<int> records = data.base.GetSubGroupStudyID()[block];
    Rows rows;
    for (const std::string& label : data.StudyLabelsOf(records)) {
        const std::size_t step = rows.size();
        rows.push_back({Kind::STUDY, "+ " + label, values[step]});
        rows.back().records = {records[step]};
        SetEffect(rows.back(), data, effects, step);
    }
    return rows;
}

} // namespace

bool IsDrawable(const ForestInterval& place)
{
    return IsNumber(place.estimate) && IsNumber(place.lower) && IsNumber(place.upper);
}

/// The last model of a run with groups is that of all studies.
ForestRow OverallRow(const AnalysisData& data)
{
    return PooledRow(data, data.groupLabels.size(), WithNames(StyleOf(data).overall, NamesOfEffect(data)));
}

std::vector<ForestRow> ForestRows(const AnalysisData& data)
{
    Rows studies = RowsOfStudies(data);
    const Rows end = PooledRowsOf(data, data.groupLabels.size(), StyleOf(data).overall, studies);
    Sort(studies, data.request.forest);
    Rows rows = studies;
    if (!data.groupLabels.empty()) {
        const std::vector<Rows> blocks = InBlocks(data, studies);
        rows = GroupedRows(data, blocks,
                           [&](std::size_t group) { return EndOfGroup(data, group, blocks[group]); });
        Append(rows, RowsWithoutGroup(data, blocks.back()));
    }
    Append(rows, end);
    const std::optional<AnalysisData> other = OtherModelOf(data);
    Append(rows, PredictionRow(other && IsRandom(other->settings) ? *other : data));
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
    Rows rows = GroupedRows(data, blocks, [&](std::size_t group) {
        return Rows{PooledRow(data, group, WithNames(StyleOf(data).pooled, NamesOfEffect(data)))};
    });
    rows.push_back(OverallRow(data));
    return rows;
}

} // namespace host
