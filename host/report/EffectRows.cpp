#include "host/report/EffectRows.h"

#include "host/text/Wording.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Rows = std::vector<std::vector<double>>;

/// The last step of each row, which pools all studies of the row.
std::vector<double> LastSteps(const Rows& rows)
{
    std::vector<double> last;
    for (const std::vector<double>& row : rows)
        last.push_back(row.back());
    return last;
}

std::vector<double> RowAt(const Rows& rows, std::size_t row)
{
    return row < rows.size() ? rows[row] : std::vector<double>();
}

/// The cumulative results, of which `pick` selects entries.
template <class Pick>
EffectRows PickedCumulativeRows(const AnalysisData& data, const Pick& pick)
{
    const MABaseModel& base = data.base;
    EffectRows rows = {
        .effects = {pick(base.GetCumEstES()), pick(base.GetCumEstCiLower()), pick(base.GetCumEstCiUpper())},
        .stdErrors = pick(base.GetCumEstStdErr()),
        .statistics = pick(base.GetCumEstZval()),
        .significances = pick(base.GetCumEstSig())};
    if (data.natural) {
        const NaturalResults::Steps& steps = data.natural->cumulative;
        rows.naturals = {pick(steps.values), pick(steps.lower), pick(steps.upper)};
    }
    return rows;
}

EffectRows ModelRows(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    EffectRows rows = {.effects = {base.GetEstEffectSize(), base.GetEstCILower(), base.GetEstCIUpper()},
                       .stdErrors = base.GetEstStdError(),
                       .statistics = base.GetEstZVal(),
                       .significances = base.GetEstSig()};
    if (data.natural)
        rows.naturals = data.natural->models;
    return rows;
}

} // namespace

EffectRows StudyRows(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    EffectRows rows = {.effects = {base.GetEffectSize(), base.GetCILower(), base.GetCIUpper()}};
    if (data.natural)
        rows.naturals = data.natural->studies;
    return rows;
}

EffectRows PooledRows(const AnalysisData& data)
{
    return data.base.GetCumEstES().empty() ? ModelRows(data) : PickedCumulativeRows(data, LastSteps);
}

EffectRows CumulativeRows(const AnalysisData& data, std::size_t group)
{
    return PickedCumulativeRows(data, [group](const Rows& rows) { return RowAt(rows, group); });
}

EffectHeaders HeadersOf(const Measure& measure)
{
    return {measure.symbol, measure.AnalysisSymbol()};
}

void AppendEffects(std::vector<ReportColumn>& table, const EffectRows& rows, const EffectHeaders& headers,
                   const AnalysisData& data)
{
    if (!rows.naturals.values.empty())
        table.push_back({data.IntervalHeader(headers.natural), EstimateTexts(rows.naturals, data.numbers)});
    table.push_back({data.IntervalHeader(headers.effect), EstimateTexts(rows.effects, data.decimals)});
    if (!rows.stdErrors.empty())
        table.push_back(
            {"SE", TextsOf(rows.stdErrors, [&](double stdError) { return data.EffectText(stdError); })});
    if (!rows.statistics.empty())
        table.push_back({WordingOfStatistic(data.settings), TextsOf(rows.statistics, data.numbers)});
    if (!rows.significances.empty())
        table.push_back({"p", TextsOf(rows.significances, PValueText)});
}

} // namespace host
