#include "host/report/AnalysisData.h"

#include "host/report/ReportParts.h"

#include <fmt/format.h>

#include <algorithm>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// Of groups that were told apart: the library then lists their values and, behind them, one for all studies.
std::vector<std::string> GroupLabels(const ValueLabels& subgroup, std::vector<double> groups)
{
    std::vector<std::string> labels;
    if (groups.size() < 2)
        return labels;
    groups.pop_back();
    for (const double value : groups)
        labels.push_back(LabelText(subgroup.LabelOf(value)));
    return labels;
}

} // namespace

AnalysisData::AnalysisData(const AnalysisRequest& ofRequest, const Analysis& ofAnalysis)
    : request(ofRequest),
      analysis(ofAnalysis),
      settings(request.settings),
      base(analysis.Base()),
      effect(WordingOfEffect(settings)),
      binary(effect.isRatio ? analysis.Binary() : nullptr),
      level(WordingOfLevel(settings)),
      decimals(std::max(DecimalsFor(base.GetStdError()), DecimalsFor(base.GetEstStdError()))),
      groupLabels(GroupLabels(request.subgroup, base.GetUniGroup()))
{}

std::vector<std::string> AnalysisData::RowLabels(std::size_t rowCount) const
{
    std::vector<std::string> labels = {"Overall"};
    if (rowCount > 1)
        labels.insert(labels.begin(), groupLabels.begin(), groupLabels.end());
    return labels;
}

std::vector<std::string> AnalysisData::StudyLabelsOf(const std::vector<int>& records) const
{
    std::vector<std::string> labels;
    labels.reserve(records.size());
    for (const int record : records)
        labels.push_back(LabelText(request.studyLabels[static_cast<std::size_t>(record)]));
    return labels;
}

std::string AnalysisData::IntervalHeader(const std::string& symbol) const
{
    return fmt::format("{} [{} CI]", symbol, level);
}

EffectHeaders HeadersOf(const EffectWording& effect)
{
    return {effect.symbol, effect.AnalysisSymbol()};
}

void AppendEffects(std::vector<ReportColumn>& table, const EffectRows& rows, const EffectHeaders& headers,
                   const AnalysisData& data)
{
    if (!rows.ratios.values.empty())
        table.push_back({data.IntervalHeader(headers.ratio), EstimateTexts(rows.ratios)});
    table.push_back({data.IntervalHeader(headers.effect), EstimateTexts(rows.effects, data.decimals)});
    if (!rows.stdErrors.empty())
        table.push_back(
            {"SE", TextsOf(rows.stdErrors, [&](double stdError) { return data.EffectText(stdError); })});
    if (!rows.statistics.empty())
        table.push_back({WordingOfStatistic(data.settings), TextsOf(rows.statistics, NumberText)});
    if (!rows.significances.empty())
        table.push_back({"p", TextsOf(rows.significances, PValueText)});
}

} // namespace host
