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

/// The rows of each group's studies, then those of studies without a value of the subgroup variable, and then
/// those that lack only their place in the order of a cumulative analysis.
std::vector<Rows> InBlocks(const AnalysisData& data, Rows studies)
{
    const std::vector<std::vector<int>> groups = data.base.GetSubGroupStudyID();
    std::vector<std::size_t> blockOfRecord(data.request.studyLabels.size(), groups.size());
    for (std::size_t group = 0; group < groups.size(); ++group)
        for (const int record : groups[group])
            blockOfRecord[static_cast<std::size_t>(record)] = group;
    std::vector<Rows> blocks(groups.size() + 2);
    const std::vector<int> withoutGroup = data.base.GetSubgroupMissing();
    for (const int record : data.base.GetCumulativeMissing())
        if (!std::binary_search(withoutGroup.begin(), withoutGroup.end(), record))
            blockOfRecord[static_cast<std::size_t>(record)] = groups.size() + 1;
    for (ForestRow& study : studies) {
        const std::size_t block = blockOfRecord[RecordOf(study)];
        blocks[block].push_back(std::move(study));
    }
    return blocks;
}

void Append(Rows& rows, Rows more)
{
    for (ForestRow& row : more)
        rows.push_back(std::move(row));
}

/// A row of what a model pools.
ForestRow PooledRow(const AnalysisData& data, const EffectRows& pooled, std::size_t model,
                    const std::string& label)
{
    ForestRow row = {Kind::POOLED, label};
    SetEffect(row, data, pooled, model);
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

/// The models of the forest plot. What the library lists for each of them is read once, because there may be
/// thousands of groups.
class Models
{
public:
    explicit Models(const AnalysisData& data)
        : data_(data), pooled_(PooledRows(data)), other_(OtherModelOf(data))
    {
        if (other_)
            otherPooled_ = PooledRows(*other_);
        heterogeneity_ = HeterogeneityTexts(Random());
    }

    /// The estimates of a group, or of all studies, by one model or by both kinds, the fixed effect first.
    Rows PooledOf(std::size_t model, const char* label, const Rows& studies) const;
    /// Those of a group, and their heterogeneity.
    Rows EndOfGroup(std::size_t group, const Rows& studies) const;

    /// The analysis that has tau², if there is one.
    const AnalysisData& Random() const { return other_ && IsRandom(other_->settings) ? *other_ : data_; }

private:
    static std::string NameOf(const AnalysisData& data)
    {
        return IsRandom(data.settings) ? "Random-effects model" : "Fixed-effect model";
    }

    const AnalysisData& data_;
    EffectRows pooled_;
    std::optional<AnalysisData> other_;
    EffectRows otherPooled_;
    std::vector<std::string> heterogeneity_; ///< of each model
};

Rows Models::PooledOf(std::size_t model, const char* label, const Rows& studies) const
{
    Rows rows = {PooledRow(data_, pooled_, model, WithNames(label, NamesOfEffect(data_)))};
    SetPooled(rows.front(), studies);
    if (!other_ || model >= otherPooled_.effects.values.size())
        return rows;
    rows.front().label = NameOf(data_);
    rows.push_back(PooledRow(*other_, otherPooled_, model, NameOf(*other_)));
    rows.back().records = rows.front().records;
    std::swap(rows.front().otherWeight, rows.back().otherWeight);
    if (IsRandom(data_.settings))
        std::swap(rows.front(), rows.back());
    return rows;
}

Rows Models::EndOfGroup(std::size_t group, const Rows& studies) const
{
    Rows rows = PooledOf(group, StyleOf(data_).pooled, studies);
    if (group < heterogeneity_.size() && !heterogeneity_[group].empty())
        rows.push_back({Kind::NOTE, heterogeneity_[group]});
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

/// The last model is that of all studies. A single group has one too, where a cumulative analysis lacks
/// studies.
std::size_t OverallModel(const AnalysisData& data)
{
    return PooledRows(data).effects.values.size() - 1;
}

/// A heading, the rows, and what `makeEnd` makes of the group.
template <class MakeEnd>
Rows GroupedRows(const AnalysisData& data, const std::vector<Rows>& blocks, const MakeEnd& makeEnd)
{
    Rows rows;
    for (std::size_t group = 0; group < data.groupLabels.size(); ++group) {
        rows.push_back({Kind::HEADING, GroupName(data, group)});
        Append(rows, blocks[group]);
        Append(rows, makeEnd(group));
        rows.push_back({Kind::GAP});
    }
    return rows;
}

/// Studies without a value of the column.
Rows RowsWithoutValue(const std::string& column, const Rows& studies)
{
    if (studies.empty())
        return {};
    Rows rows = {{Kind::HEADING, LabelText(column) + ": not known"}};
    Append(rows, studies);
    rows.push_back({Kind::GAP});
    return rows;
}

Rows CumulativeSteps(const AnalysisData& data, const CumulativeGroup& group)
{
    const std::vector<std::string> labels = data.StudyLabelsOf(group.records);
    Rows rows;
    for (std::size_t step = 0; step < labels.size(); ++step) {
        rows.push_back(EffectRow(data, "+ " + labels[step], group.effects, step));
        rows.back().remark = LabelText(data.request.cumulative.LabelOf(group.values[step]));
        rows.back().records = {group.records[step]};
    }
    return rows;
}

} // namespace

bool IsDrawable(const ForestInterval& place)
{
    return IsNumber(place.estimate) && IsNumber(place.lower) && IsNumber(place.upper);
}

ForestRow EffectRow(const AnalysisData& data, std::string label, const EffectRows& effects, std::size_t entry)
{
    ForestRow row = {Kind::STUDY, std::move(label)};
    SetEffect(row, data, effects, entry);
    return row;
}

ForestRow OverallRow(const AnalysisData& data)
{
    return PooledRow(data, PooledRows(data), OverallModel(data),
                     WithNames(StyleOf(data).overall, NamesOfEffect(data)));
}

std::vector<ForestRow> ForestRows(const AnalysisData& data)
{
    const Models models(data);
    Rows studies = RowsOfStudies(data);
    const Rows end = models.PooledOf(OverallModel(data), StyleOf(data).overall, studies);
    Sort(studies, data.request.forest);
    Rows rows;
    if (data.groupLabels.empty()) {
        rows = std::move(studies);
    } else {
        const std::vector<Rows> blocks = InBlocks(data, std::move(studies));
        rows = GroupedRows(data, blocks,
                           [&](std::size_t group) { return models.EndOfGroup(group, blocks[group]); });
        const std::size_t groupCount = data.groupLabels.size();
        Append(rows, RowsWithoutValue(data.request.subgroup.column, blocks[groupCount]));
        Append(rows, RowsWithoutValue(data.request.cumulative.column, blocks[groupCount + 1]));
    }
    Append(rows, end);
    Append(rows, PredictionRow(models.Random()));
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
    if (data.base.GetSubGroupStudyID().empty()) // no study has a value of the order
        return {};
    if (data.groupLabels.empty())
        return CumulativeSteps(data, groups.front());
    std::vector<Rows> blocks;
    blocks.reserve(groups.size());
    for (const CumulativeGroup& group : groups)
        blocks.push_back(CumulativeSteps(data, group));
    const EffectRows pooled = PooledRows(data);
    const std::string label = WithNames(StyleOf(data).pooled, NamesOfEffect(data));
    Rows rows = GroupedRows(data, blocks,
                            [&](std::size_t group) { return Rows{PooledRow(data, pooled, group, label)}; });
    rows.push_back(OverallRow(data));
    return rows;
}

} // namespace host
