#include "host/table/StudyTable.h"

#include "host/report/EffectRows.h"
#include "host/report/ModelRows.h"
#include "host/table/DataColumns.h"
#include "host/table/NumberColumns.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

constexpr double NONE = KXMV::Missing();

/// An estimate with its limits.
struct Effect
{
    double value = NONE;
    double lower = NONE;
    double upper = NONE;
};

struct Row
{
    enum class Kind
    {
        STUDY,
        POOLED,
        HETEROGENEITY,
        PREDICTION
    };

    Kind kind;
    std::string label;
    std::string group = {};
    std::string type = {};
    int record = -1; ///< of a study
    Effect natural = {};
    Effect effect = {};
    double stdError = NONE;
    double weight = NONE; ///< in percent
    double p = NONE;
    ModelRow model = {.q = NONE, .qDf = NONE, .qSig = NONE}; ///< of its heterogeneity
};

using Rows = std::vector<Row>;

double At(const std::vector<double>& values, std::size_t entry)
{
    return entry < values.size() ? values[entry] : NONE;
}

Effect EntryOf(const Estimates& estimates, std::size_t entry)
{
    return {At(estimates.values, entry), At(estimates.lower, entry), At(estimates.upper, entry)};
}

/// Makes the rows in the order of the table: each group's studies with what is pooled of them, the studies
/// that are in no group, then what is pooled of all.
class RowMaker
{
public:
    explicit RowMaker(const AnalysisData& data) : data_(data) {}

    Rows Make() &&
    {
        if (!hasGroups_)
            AddStudies(models_.back());
        for (std::size_t i = 0; i < models_.size() && !records_.empty(); ++i) {
            if (hasGroups_)
                AddStudies(models_[i]);
            AddPooled(i);
        }
        return std::move(rows_);
    }

private:
    /// The model of all studies adds those that no group has added.
    void AddStudies(const ModelRow& model)
    {
        for (const std::size_t study : model.studies) {
            if (!isAdded_[study])
                AddStudy(study, model);
            isAdded_[study] = true;
        }
    }

    void AddStudy(std::size_t study, const ModelRow& model)
    {
        rows_.push_back({.kind = Row::Kind::STUDY,
                         .label = labels_[study],
                         .group = model.isOverall ? "" : model.label,
                         .type = "study",
                         .record = records_[study],
                         .natural = EntryOf(studies_.naturals, study),
                         .effect = EntryOf(studies_.effects, study),
                         .stdError = stdErrors_[study],
                         .weight = 100 * weights_[study]});
    }

    void AddPooled(std::size_t i)
    {
        const ModelRow& model = models_[i];
        const std::string name = model.isOverall ? OVERALL : hasGroups_ ? "Pooled" : model.label;
        const std::string group = model.isOverall ? "" : model.label;
        rows_.push_back({.kind = Row::Kind::POOLED,
                         .label = name,
                         .group = group,
                         .type = model.isOverall ? "overall" : "group",
                         .natural = EntryOf(pooled_.naturals, i),
                         .effect = EntryOf(pooled_.effects, i),
                         .stdError = At(pooled_.stdErrors, i),
                         .weight = WeightOf(model),
                         .p = At(pooled_.significances, i)});
        if (const Effect prediction = EntryOf(predictions_, i); HasValue(prediction.lower))
            rows_.push_back({.kind = Row::Kind::PREDICTION,
                             .label = data_.level + " prediction interval",
                             .group = group,
                             .type = "prediction interval",
                             .natural = data_.natural ? EntryOf(data_.natural->predictions, i) : Effect(),
                             .effect = prediction});
        if (HasValue(model.q) && model.qDf > 0)
            rows_.push_back({.kind = Row::Kind::HETEROGENEITY,
                             .label = "Heterogeneity",
                             .group = group,
                             .type = "heterogeneity",
                             .model = model});
    }

    /// In percent. That of all studies is 100, which a sum of rounded weights misses.
    double WeightOf(const ModelRow& model) const
    {
        double weight = 0;
        for (const std::size_t study : model.studies)
            weight += 100 * weights_[study];
        return std::abs(weight - 100) < 1e-9 ? 100 : weight;
    }

    const AnalysisData& data_;
    const std::vector<ModelRow> models_ = ModelRowsOf(data_);
    const std::vector<int> records_ = data_.base.GetNonMissingStudyID();
    const std::vector<std::string> labels_ = data_.StudyLabelsOf(records_);
    const std::vector<double> weights_ = data_.base.GetNormalizedWeight();
    const std::vector<double> stdErrors_ = data_.base.GetStdError();
    const EffectRows studies_ = StudyRows(data_);
    const EffectRows pooled_ = PooledRows(data_);
    const bool hasGroups_ = !data_.groupLabels.empty();
    std::vector<bool> isAdded_ = std::vector<bool>(records_.size());
    const Estimates predictions_ = {{}, data_.base.GetPILower(), data_.base.GetPIUpper()};
    Rows rows_;
};

/// A column of each row's `value`.
template <class Value>
std::vector<double> ColumnOf(const Rows& rows, const Value& value)
{
    std::vector<double> column;
    column.reserve(rows.size());
    for (const Row& row : rows)
        column.push_back(value(row));
    return column;
}

template <class Text>
std::vector<std::string> TextColumnOf(const Rows& rows, const Text& text)
{
    std::vector<std::string> column;
    column.reserve(rows.size());
    for (const Row& row : rows)
        column.push_back(text(row));
    return column;
}

Estimates CellsOf(const Rows& rows, Effect Row::*effect)
{
    return {ColumnOf(rows, [&](const Row& row) { return (row.*effect).value; }),
            ColumnOf(rows, [&](const Row& row) { return (row.*effect).lower; }),
            ColumnOf(rows, [&](const Row& row) { return (row.*effect).upper; })};
}

Heterogeneity HeterogeneityOf(const Row& row)
{
    const ModelRow& model = row.model;
    const bool isThere = HasValue(model.q);
    return {model.q, model.qDf, model.qSig, isThere && HasValue(model.i2) ? model.i2 : NONE,
            isThere ? model.tau2 : NONE};
}

/// "0.47 [0.33, 0.68]", or the interval alone.
std::string EffectText(const Effect& effect, const AnalysisData& data)
{
    if (!HasValue(effect.lower) && !HasValue(effect.value))
        return {};
    const std::string interval =
        HasValue(effect.lower) || HasValue(effect.upper)
            ? fmt::format("[{}, {}]", data.PooledText(effect.lower), data.PooledText(effect.upper))
            : NO_VALUE;
    return HasValue(effect.value) ? data.PooledText(effect.value) + " " + interval : interval;
}

void AddReading(StudyTable& table, const Rows& rows, const AnalysisData& data,
                const std::vector<StudyTable::Numbers>& reported)
{
    std::vector<ReportColumn>& reading = table.reading;
    for (const Row& row : rows)
        table.isSentence.push_back(row.kind == Row::Kind::HETEROGENEITY);
    reading.push_back({"Study",
                       TextColumnOf(rows,
                                    [&](const Row& row) {
                                        return row.kind == Row::Kind::HETEROGENEITY
                                                   ? "Heterogeneity: " +
                                                         HeterogeneityText(HeterogeneityOf(row), data.numbers)
                                                   : row.label;
                                    }),
                       true});
    if (!data.groupLabels.empty())
        reading.push_back({LabelText(data.request.subgroup.column),
                           TextColumnOf(rows, [](const Row& row) { return row.group; }), true});
    for (const StudyTable::Numbers& column : reported)
        reading.push_back({column.header, TextsOf(column.cells, [](double value) {
                               return HasValue(value) ? fmt::format("{}", value) : std::string();
                           })});
    Effect Row::*const shown = data.natural ? &Row::natural : &Row::effect;
    reading.push_back(
        {data.IntervalHeader(data.natural ? data.measure.symbol : data.measure.AnalysisSymbol()),
         TextColumnOf(rows, [&](const Row& row) { return EffectText(row.*shown, data); })});
    reading.push_back({"Weight (%)", TextColumnOf(rows, [&](const Row& row) {
                           return HasValue(row.weight)
                                      ? FixedText(row.weight, data.numbers.PercentDecimals(1))
                                      : std::string();
                       })});
    reading.push_back({"p", TextColumnOf(rows, [](const Row& row) {
                           return HasValue(row.p) ? PValueText(row.p) : std::string();
                       })});
}

} // namespace

StudyTable StudyTableOf(const Options& options, const DataTable& table, const AnalysisData& data)
{
    const Rows rows = RowMaker(data).Make();
    StudyTable made;
    made.texts = {{"Study", TextColumnOf(rows, [](const Row& row) { return row.label; })},
                  {"Row", TextColumnOf(rows, [](const Row& row) { return row.type; })}};
    if (!data.groupLabels.empty())
        made.texts.push_back({LabelText(data.request.subgroup.column),
                              TextColumnOf(rows, [](const Row& row) { return row.group; })});
    for (DataColumn& column : DataColumnsOf(options, table))
        made.numbers.push_back({column.header, ColumnOf(rows, [&](const Row& row) {
                                    return row.record < 0
                                               ? NONE
                                               : column.values[static_cast<std::size_t>(row.record)];
                                })});
    AddReading(made, rows, data, made.numbers);
    if (data.natural)
        AddEstimates(made, data.measure.symbol, data.level, CellsOf(rows, &Row::natural), data.numbers);
    AddEstimates(made, data.measure.AnalysisSymbol(), data.level, CellsOf(rows, &Row::effect), data.numbers);
    made.numbers.push_back(
        {"SE", ColumnOf(rows, [](const Row& row) { return row.stdError; }), data.numbers.digits});
    made.numbers.push_back({"Weight (%)", ColumnOf(rows, [](const Row& row) { return row.weight; }),
                            PercentDigits(data.numbers)});
    made.numbers.push_back({"p", ColumnOf(rows, [](const Row& row) { return row.p; })});
    std::vector<Heterogeneity> heterogeneity;
    for (const Row& row : rows)
        heterogeneity.push_back(HeterogeneityOf(row));
    AddHeterogeneity(made, heterogeneity, true, data.numbers);
    return made;
}

} // namespace host
