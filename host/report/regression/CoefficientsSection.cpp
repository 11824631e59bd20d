#include "host/report/RegressionSections.h"

#include <fmt/format.h>

#include <cstddef>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

std::vector<ReportColumn> CoefficientColumns(const RegressionData& data)
{
    std::vector<ReportColumn> columns = data.EstimateColumns(
        "Coefficient", {data.output.GetEstimation(), data.output.GetBetaConfInterValLower(),
                        data.output.GetBetaConfInterValUpper()});
    const KXBitSet estimated = data.output.GetRedundancyInfo();
    for (ReportColumn& column : columns) {
        CompactTexts cells;
        for (std::size_t i = 0; i < column.cells.size(); ++i)
            cells.push_back(estimated.Test(i) ? column.cells.View(i) : NO_VALUE);
        column.cells = std::move(cells);
    }
    return columns;
}

/// What the coefficients of a ratio are.
std::string SentenceOfScale(const Measure& measure)
{
    return fmt::format(
        "Coefficients are of the {0}. Its exponential is the {1} where all predictors are 0 (the "
        "intercept), and the factor by which the {1} changes with a predictor.",
        measure.AnalysisName(), measure.name);
}

} // namespace

ReportSections CoefficientsSection(const RegressionData& data)
{
    ReportSection section = {"Coefficients", {{"Parameter", data.ParameterNames(), true}}, {}};
    for (ReportColumn& column : CoefficientColumns(data))
        section.table.push_back(std::move(column));
    section.table.push_back(data.StdErrorColumn("SE", data.output.GetBetaStandErr()));
    section.table.push_back({data.Statistic(), TextsOf(data.output.GetBetaTest(), data.numbers)});
    section.table.push_back({"p", TextsOf(data.output.GetBetaTestPValue(), PValueText)});
    const KXBitSet estimated = data.output.GetRedundancyInfo();
    if (estimated.Count() < estimated.Size())
        section.sentences.push_back(
            "-: aliased: the parameters before it determine it, to within the computational tolerance, "
            "and it counts as 0 in the fit.");
    if (data.measure.isRatio)
        section.sentences.push_back(SentenceOfScale(data.measure));
    return {section};
}

} // namespace host
