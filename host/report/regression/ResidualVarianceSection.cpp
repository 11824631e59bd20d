#include "host/report/RegressionSections.h"
#include "host/report/ReportColumns.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

namespace host {

ReportSections ResidualVarianceSection(const RegressionData& data)
{
    if (!data.isRandom)
        return {};
    const Estimates tau2 = {
        {data.output.GetTau()}, {data.output.GetTau2CILower()}, {data.output.GetTau2CIUpper()}};
    const Estimates tau = {SquareRoots(tau2.values), SquareRoots(tau2.lower), SquareRoots(tau2.upper)};
    ReportSection section = {"Residual variance between studies",
                             {EstimateColumn("tau²", data, tau2), EstimateColumn("tau", data, tau)},
                             {}};
    if (HasAnyValue({data.output.GetLogLikelihood()})) {
        section.table.push_back(Cell("log-likelihood", data.numbers(data.output.GetLogLikelihood())));
        section.table.push_back(Cell("AIC", data.numbers(data.output.GetAIC())));
        section.table.push_back(Cell("BIC", data.numbers(data.output.GetBIC())));
        section.table.push_back(Cell("AICc", data.numbers(data.output.GetAICc())));
    }
    const MAConst::TAU2INTERVAL method = data.request.settings.GetTau2Interval();
    if (HasAnyValue(tau2.upper))
        section.sentences.push_back(
            fmt::format("The intervals are {} intervals.", WordingOfTau2Interval(method)));
    if (method == MAConst::TAU2_INTERVAL_Q_PROFILE && tau2.upper.front() == 0)
        section.sentences.emplace_back(EMPTY_Q_PROFILE);
    return {section};
}

} // namespace host
