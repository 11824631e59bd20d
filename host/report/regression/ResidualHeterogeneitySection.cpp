#include "host/report/RegressionSections.h"

namespace host {

namespace {

std::string PercentText(const RegressionData& data, double fraction)
{
    return FixedText(InPercent({fraction}).front(), data.numbers.PercentDecimals(2));
}

} // namespace

ReportSections ResidualHeterogeneitySection(const RegressionData& data)
{
    ReportSection section = {"Residual heterogeneity",
                             {Cell("Q", data.numbers(data.output.GetResHomoChiSqure())),
                              Cell("df", FixedText(data.output.GetResHomoDf(), 0)),
                              Cell("p", PValueText(data.output.GetResHomoPValue()))},
                             {}};
    section.table.push_back(Cell("I² %", PercentText(data, data.output.GetIresSquare())));
    section.table.push_back(Cell("H²", data.numbers(data.output.GetHresSquare())));
    if (data.isRandom)
        section.table.push_back(Cell("R² %", PercentText(data, data.output.GetRSquare())));
    return {section};
}

} // namespace host
