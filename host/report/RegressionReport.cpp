#include "host/report/RegressionReport.h"

#include "host/cli/RawOutcomes.h"
#include "host/report/PresetSection.h"
#include "host/report/RecordsSection.h"
#include "host/report/RegressionSections.h"
#include "host/report/Warnings.h"
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
    Append(report.sections,
           RecordsSection(DataName(options.dataPath), analysis.records, request.studyLabels));
    Append(report.sections, PresetSection(options));
    for (RegressionSectionMaker* const make : REGRESSION_SECTIONS)
        Append(report.sections, make(data));
    Append(report.sections, WarningsSection(WarningsOf(request, analysis)));
    return report;
}

} // namespace host
