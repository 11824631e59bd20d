#include "host/report/AnalysisReport.h"

#include "host/report/AnalysisData.h"
#include "host/report/PresetSection.h"
#include "host/report/RecordsSection.h"
#include "host/report/Sections.h"
#include "host/report/Warnings.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

namespace host {

Report MakeAnalysisReport(const Options& options, const AnalysisRequest& request, const Analysis& analysis)
{
    const AnalysisData data(request, analysis);
    const RecordSummary records = analysis.Records(request.studyLabels.size());
    Report report = {fmt::format("Meta-analysis: {}, {}, {} level", data.measure.Title(),
                                 WordingOfModel(data.settings), data.level),
                     {}};
    Append(report.sections, RecordsSection(DataName(options.dataPath), records, request.studyLabels));
    Append(report.sections, PresetSection(options));
    if (!records.used.empty())
        for (SectionMaker* const make : ANALYSIS_SECTIONS)
            Append(report.sections, make(data));
    Append(report.sections, WarningsSection(WarningsOf(data)));
    return report;
}

} // namespace host
