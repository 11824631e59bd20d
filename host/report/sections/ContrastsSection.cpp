#include "host/report/EffectRows.h"
#include "host/report/Sections.h"
#include "host/text/PlainText.h"

#include <cstddef>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Texts = std::vector<std::string>;

/// Explains the statuses of the contrasts. There are none where tables are pooled.
Texts ContrastSentences(const Texts& labels, const std::vector<int>& statuses)
{
    Texts sentences = {"A contrast is the sum of the studies' effects, each times its coefficient."};
    for (std::size_t i = 0; i < statuses.size(); ++i) {
        if (statuses[i] == 1)
            sentences.push_back(labels[i] + ": all coefficients are 0, which leaves nothing to test.");
        else if (statuses[i] == 2)
            sentences.push_back(labels[i] + ": tested without the studies that have no coefficient.");
    }
    return sentences;
}

} // namespace

ReportSections ContrastsSection(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    const Texts labels = data.VariableLabelsOf(data.settings.GetContrastCoefIndex());
    if (labels.empty())
        return {};
    EffectRows rows = {
        .effects = {base.GetContrastEstES(), base.GetContrastEstCILower(), base.GetContrastEstCIUpper()},
        .stdErrors = base.GetContrastEstStdError(),
        .significances = base.GetContrastEstSig()};
    if (data.natural)
        rows.naturals = data.natural->contrasts;
    ReportSection section = {"Contrasts", {{"", labels, true}}, {}};
    AppendEffects(section.table, rows, {"exp(contrast)", "Contrast"}, data);
    section.sentences = ContrastSentences(labels, base.GetContrastStatus());
    return {section};
}

} // namespace host
