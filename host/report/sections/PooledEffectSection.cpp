#include "host/report/EffectRows.h"
#include "host/report/Sections.h"
#include "host/report/ZeroCellSentences.h"
#include "host/text/Wording.h"

namespace host {

ReportSections PooledEffectSection(const AnalysisData& data)
{
    const EffectRows rows = PooledRows(data);
    ReportSection section = {"Pooled effect", {{"", data.RowLabels(rows.effects.values.size()), true}}, {}};
    AppendEffects(section.table, rows, HeadersOf(data.measure), data);
    for (const std::string& sentence :
         {WordingOfNullHypothesis(data.settings, data.measure), WordingOfPooledCorrection(data)})
        if (!sentence.empty())
            section.sentences.push_back(sentence);
    return {section};
}

} // namespace host
