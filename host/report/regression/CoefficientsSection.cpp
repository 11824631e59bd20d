#include "host/report/RegressionSections.h"
#include "host/report/ReportColumns.h"

#include <cstddef>

using namespace MA_NAMESPACE;

namespace host {

namespace {

bool UsesStudentT(const MARegSettings& settings)
{
    return settings.IsKnapHartAdjust() || settings.GetTestDistType() == MAConst::TEST_STUDENT_T;
}

ReportColumn CoefficientColumn(const RegressionData& data)
{
    ReportColumn column = {IntervalHeader("Coefficient", data.level),
                           EstimateTexts({data.output.GetEstimation(), data.output.GetBetaConfInterValLower(),
                                          data.output.GetBetaConfInterValUpper()},
                                         data.decimals)};
    for (std::size_t i = 0; i < column.cells.size(); ++i)
        if (!data.output.GetRedundancyInfo().Test(i))
            column.cells[i] = std::string(NO_VALUE);
    return column;
}

} // namespace

ReportSections CoefficientsSection(const RegressionData& data)
{
    ReportSection section = {
        "Coefficients",
        {{"Parameter", data.ParameterLabels(), true},
         CoefficientColumn(data),
         data.EffectColumn("SE", data.output.GetBetaStandErr()),
         {UsesStudentT(data.request.settings) ? "t" : "z", TextsOf(data.output.GetBetaTest(), NumberText)},
         {"p", TextsOf(data.output.GetBetaTestPValue(), PValueText)}},
        {}};
    const KXBitSet estimated = data.output.GetRedundancyInfo();
    if (estimated.Count() < estimated.Size())
        section.sentences.push_back(
            "-: aliased: the parameters before it determine it, to within the computational tolerance, "
            "and it counts as 0 in the fit.");
    return {section};
}

} // namespace host
