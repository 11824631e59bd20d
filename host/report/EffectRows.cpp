#include "host/report/EffectRows.h"

#include "host/text/Wording.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Rows = std::vector<std::vector<double>>;

/// The cumulative results, a row for each group.
struct CumulativeRows
{
    explicit CumulativeRows(const AnalysisData& data);

    /// The entries that `pick` takes of each part; one that is not there stays empty.
    template <class Pick>
    EffectRows Picked(const Pick& pick) const
    {
        return {.naturals = {pick(natural.values), pick(natural.lower), pick(natural.upper)},
                .effects = {pick(estimates), pick(lower), pick(upper)},
                .stdErrors = pick(stdErrors),
                .statistics = pick(statistics),
                .significances = pick(significances)};
    }

    Rows estimates;
    Rows lower;
    Rows upper;
    Rows stdErrors;
    Rows statistics;
    Rows significances;
    NaturalResults::Steps natural;
};

CumulativeRows::CumulativeRows(const AnalysisData& data)
    : estimates(data.base.GetCumEstES()),
      lower(data.base.GetCumEstCiLower()),
      upper(data.base.GetCumEstCiUpper()),
      stdErrors(data.base.GetCumEstStdErr()),
      statistics(data.base.GetCumEstZval()),
      significances(data.base.GetCumEstSig()),
      natural(data.natural ? data.natural->cumulative : NaturalResults::Steps())
{}

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
    return data.base.GetCumEstES().empty() ? ModelRows(data) : CumulativeRows(data).Picked(LastSteps);
}

/// The getters copy the steps of all groups, so that each is called once.
std::vector<CumulativeGroup> CumulativeGroups(const AnalysisData& data)
{
    const CumulativeRows rows(data);
    const std::vector<std::vector<int>> records = data.base.GetSubGroupStudyID();
    const Rows values = data.base.GetEstCumulative();
    std::vector<CumulativeGroup> groups;
    // With groups, the last row of the results is that of all studies, which has no steps.
    for (std::size_t group = 0; group < records.size() && !rows.estimates.empty(); ++group)
        groups.push_back({records[group], values[group],
                          rows.Picked([group](const Rows& part) { return RowAt(part, group); })});
    return groups;
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
        table.push_back({"SE", TextsOf(rows.stdErrors, [&](double stdError) {
                             return data.numbers.StdErrorText(stdError, data.decimals);
                         })});
    if (!rows.statistics.empty())
        table.push_back({WordingOfStatistic(data.settings), TextsOf(rows.statistics, data.numbers)});
    if (!rows.significances.empty())
        table.push_back({"p", TextsOf(rows.significances, PValueText)});
}

} // namespace host
