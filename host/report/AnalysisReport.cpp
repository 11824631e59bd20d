#include "host/report/AnalysisReport.h"

#include "host/report/AnalysisData.h"
#include "host/report/ConcerningWarnings.h"
#include "host/report/PresetSection.h"
#include "host/report/RecordsSection.h"
#include "host/report/Sections.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

namespace host {

namespace {

int CorrectedTables(const Analysis& analysis)
{
    return analysis.Binary() == nullptr ? 0 : analysis.Binary()->GetNZeroCorrected();
}

} // namespace

Report MakeAnalysisReport(const Options& options, const AnalysisRequest& request, const Analysis& analysis)
{
    const AnalysisData data(request, analysis);
    const RecordSummary records = analysis.Records(request.studyLabels.size());
    Report report = {fmt::format("Meta-analysis: {}, {}, {} level", data.measure.Title(),
                                 WordingOfModel(data.settings), data.level),
                     {}};
    Append(report.sections, RecordsSection(options.dataPath, records, request.studyLabels, request.lines));
    Append(report.sections, PresetSection(options));
    if (!records.used.empty())
        for (SectionMaker* const make : ANALYSIS_SECTIONS)
            Append(report.sections, make(data));
    Append(report.sections, WarningsSection(Concerning(WarningsOf(data), CorrectedTables(analysis))));
    return report;
}

} // namespace host
