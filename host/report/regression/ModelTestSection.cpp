#include "host/report/RegressionSections.h"

namespace host {

ReportSections ModelTestSection(const RegressionData& data)
{
    const bool isF = data.isRandom && data.IsAdjusted();
    const double statistic = isF ? data.output.GetFTestVal() : data.output.GetWaldChiSquareTest();
    if (!HasAnyValue({statistic}))
        return {};
    if (isF)
        return {{"Model test",
                 {Cell("F", data.numbers(statistic)), Cell("df", std::to_string(data.output.GetFDf1())),
                  Cell("residual df", std::to_string(data.output.GetFDf2())),
                  Cell("p", PValueText(data.output.GetFPValue()))},
                 {}}};
    return {{"Model test",
             {Cell("Wald chi²", data.numbers(statistic)), Cell("df", std::to_string(data.output.GetWaldDf())),
              Cell("p", PValueText(data.output.GetWaldPValue()))},
             {}}};
}

} // namespace host
