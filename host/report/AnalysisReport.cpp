#include "host/report/AnalysisReport.h"

#include "host/report/AnalysisData.h"
#include "host/report/Cautions.h"
#include "host/report/ConcerningWarnings.h"
#include "host/report/PresetSection.h"
#include "host/report/RecordsSection.h"
#include "host/report/Sections.h"
#include "host/report/citation/Methods.h"
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
    if (!records.used.empty())
        AppendSections(report, RESULT_SECTIONS, data);
    const Cautions cautions = CautionsOf(data);
    Append(report.sections, CautionsSection(cautions));
    Append(report.sections, WarningsSection(Concerning(WarningsOf(data), cautions)));
    if (!records.used.empty())
        AppendSections(report, FURTHER_SECTIONS, data);
    Append(report.sections, PresetSection(options));
    Append(report.sections, OptionNotesSection(options));
    Append(report.sections,
           RecordsSection(DataName(options.dataPath), records, request.studyLabels, request.lines));
    if (options.report.hasCitation && !records.used.empty())
        Append(report.sections, MethodsSections(data));
    return report;
}

} // namespace host
