#include "host/report/EffectRows.h"
#include "host/report/Sections.h"
#include "host/report/ZeroCellSentences.h"
#include "host/text/Wording.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// Tells which models are adjusted where that goes by heterogeneity.
std::string WordingOfAdjustedModels(const AnalysisData& data)
{
    const bool isConditional = IsRandom(data.settings) && data.settings.GetKnapHartAdjustType() ==
                                                              MAConst::KNAPP_HARTUNG_IF_HETEROGENEOUS;
    if (!isConditional)
        return {};
    const std::vector<double> dfs = data.base.GetEstDf();
    const std::vector<std::string> labels = data.RowLabels(dfs.size());
    std::vector<std::string> adjusted;
    for (std::size_t i = 0; i < dfs.size(); ++i)
        if (HasValue(dfs[i]))
            adjusted.push_back(labels[i]);
    if (adjusted.empty())
        return "Not adjusted after Knapp and Hartung, but tested by z: tau² is 0, or there are too few "
               "studies.";
    return fmt::format("Adjusted after Knapp and Hartung, and tested by t: {}{}.", fmt::join(adjusted, ", "),
                       adjusted.size() < dfs.size() ? "; the others are tested by z" : "");
}

std::string WordingOfCommonTest(const AnalysisData& data)
{
    const std::vector<double> dfs = data.base.GetEstDf();
    if (!data.settings.GetCommonTau2() || data.groupLabels.empty() || !(dfs.front() > 0))
        return {};
    return fmt::format("The groups are parts of one model: one factor after Knapp and Hartung, and t with "
                       "{:g} degrees of freedom.",
                       dfs.front());
}

} // namespace

ReportSections PooledEffectSection(const AnalysisData& data)
{
    const EffectRows rows = PooledRows(data);
    ReportSection section = {"Pooled effect", {{"", data.RowLabels(rows.effects.values.size()), true}}, {}};
    AppendEffects(section.table, rows, HeadersOf(data.measure), data);
    for (const std::string& sentence :
         {WordingOfNullHypothesis(data.settings, data.measure), WordingOfPooledCorrection(data),
          WordingOfAdjustedModels(data), WordingOfCommonTest(data)})
        if (!sentence.empty())
            section.sentences.push_back(sentence);
    return {section};
}

} // namespace host
