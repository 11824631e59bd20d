#include "host/report/LeaveOneOutRows.h"
#include "host/report/Sections.h"
#include "host/text/NumberText.h"

using namespace MA_NAMESPACE;

namespace host {

ReportSections LeaveOneOutSection(const AnalysisData& data)
{
    const EffectRows rows = LeaveOneOutRows(data);
    if (rows.effects.values.empty())
        return {};
    ReportSection section = {
        "Leave-one-out", {{"Without", data.StudyLabelsOf(data.base.GetNonMissingStudyID()), true}}, {}};
    AppendEffects(section.table, rows, HeadersOf(data.measure), data);
    if (data.settings.GetModelType() != MAConst::MODEL_FIXED)
        section.table.push_back({"tau²", TextsOf(data.base.GetLeaveOneOutTau2Var(), data.numbers)});
    section.table.push_back({"Q", TextsOf(data.base.GetLeaveOneOutChisquareQ(), data.numbers)});
    section.table.push_back({"I² %", TextsOf(InPercent(data.base.GetLeaveOneOutI2Index()), [&](double share) {
                                 return FixedText(share, data.numbers.PercentDecimals(1));
                             })});
    section.sentences = {"Each row is the model of all studies but the one it names."};
    return {section};
}

} // namespace host
