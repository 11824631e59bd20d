#include "host/report/RegressionReport.h"

#include "host/cli/RawOutcomes.h"
#include "host/report/Cautions.h"
#include "host/report/ConcerningWarnings.h"
#include "host/report/PresetSection.h"
#include "host/report/RecordsSection.h"
#include "host/report/RegressionSections.h"
#include "host/report/citation/Methods.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

namespace host {

Report MakeRegressionReport(const Options& options, const RegressionRequest& request,
                            const RegressionAnalysis& analysis)
{
    const RegressionData data(options, request, analysis);
    Report report = {fmt::format("Meta-regression{}: {}, {} level",
                                 HasRawData(options) ? " of the " + data.measure.AnalysisName() : "",
                                 WordingOfModel(options.settings), data.level),
                     {}};
    AppendSections(report, COEFFICIENT_SECTIONS, data);
    const Cautions cautions = CautionsOf(data);
    Append(report.sections, CautionsSection(cautions));
    Append(report.sections, WarningsSection(Concerning(WarningsOf(request, analysis), cautions)));
    AppendSections(report, FURTHER_REGRESSION_SECTIONS, data);
    Append(report.sections, PresetSection(options));
    Append(report.sections, OptionNotesSection(options));
    Append(report.sections,
           RecordsSection(DataName(options.dataPath), analysis.records, request.studyLabels, request.lines));
    if (options.report.hasCitation)
        Append(report.sections, MethodsSections(data));
    return report;
}

} // namespace host
