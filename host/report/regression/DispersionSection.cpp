#include "host/report/RegressionSections.h"

#include <fmt/format.h>

namespace host {

ReportSections DispersionSection(const RegressionData& data)
{
    if (!data.options.regression.dispersion)
        return {};
    return {{"Multiplicative dispersion",
             {},
             {data.isRandom ? "--dispersion is for the fixed-effect model, and left out here."
                            : fmt::format("{}, by which the variances of the coefficients are multiplied.",
                                          data.numbers(data.output.GetMultiDisper()))}}};
}

} // namespace host
