#include "host/report/Sections.h"
#include "host/text/NumberText.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

namespace host {

namespace {

std::string TitleOfPrediction(const AnalysisData& data)
{
    const std::string rule = WordingOfPrediction(data.settings.GetPrediction());
    return data.level + " prediction interval" + (rule.empty() ? "" : ", " + rule);
}

/// The probability beyond the threshold that is asked for, if any.
void AppendProbability(ReportSection& section, const AnalysisData& data)
{
    const double above = data.settings.GetProbabilityAbove();
    const double below = data.settings.GetProbabilityBelow();
    if (!HasAnyValue({above, below}))
        return;
    const bool isAbove = HasValue(above);
    const std::string symbol =
        fmt::format("P({} {} {})", data.measure.symbol, isAbove ? '>' : '<', isAbove ? above : below);
    section.table.push_back({symbol, TextsOf(data.base.GetPIProbability(), PValueText)});
    section.sentences.push_back(symbol + ": probability that the true effect of a new study is " +
                                (isAbove ? "above" : "below") + " that value.");
}

} // namespace

ReportSections PredictionIntervalSection(const AnalysisData& data)
{
    const Estimates effects = {{}, data.base.GetPILower(), data.base.GetPIUpper()};
    if (!HasAnyValue(effects.lower))
        return {};
    ReportSection section = {TitleOfPrediction(data), {{"", data.RowLabels(effects.lower.size()), true}}, {}};
    if (data.natural)
        section.table.push_back(
            {data.measure.symbol, EstimateTexts(data.natural->predictions, data.numbers)});
    section.table.push_back({data.measure.AnalysisSymbol(), EstimateTexts(effects, data.decimals)});
    AppendProbability(section, data);
    return {section};
}

} // namespace host
