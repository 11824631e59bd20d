#include "host/report/RegressionSections.h"

namespace host {

namespace {

std::string PercentText(double fraction)
{
    return FixedText(InPercent({fraction}).front(), 2);
}

} // namespace

ReportSections ResidualHeterogeneitySection(const RegressionData& data)
{
    ReportSection section = {"Residual heterogeneity",
                             {Cell("Q", NumberText(data.output.GetResHomoChiSqure())),
                              Cell("df", FixedText(data.output.GetResHomoDf(), 0)),
                              Cell("p", PValueText(data.output.GetResHomoPValue()))},
                             {}};
    section.table.push_back(Cell("I² %", PercentText(data.output.GetIresSquare())));
    section.table.push_back(Cell("H²", NumberText(data.output.GetHresSquare())));
    if (data.isRandom)
        section.table.push_back(Cell("R² %", PercentText(data.output.GetRSquare())));
    return {section};
}

} // namespace host
