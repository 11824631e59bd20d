#include "host/report/RegressionSections.h"
#include "host/report/ReportColumns.h"

#include <fmt/format.h>

#include <algorithm>

using namespace MA_NAMESPACE;

namespace host {

namespace {

const char* SandwichWording(MAConst::SANDWICHTYPE type)
{
    switch (type) {
    case MAConst::SANDWICH_CR2:
        return "CR2, unbiased under the model, with Satterthwaite degrees of freedom";
    case MAConst::SANDWICH_CR1:
        return "CR1, with clusters less coefficients as degrees of freedom";
    case MAConst::SANDWICH_CR0:
        return "CR0, with clusters less coefficients as degrees of freedom; it rejects too often with fewer "
               "than "
               "some 40 clusters";
    }
    return "";
}

/// Below 4 degrees of freedom Satterthwaite's approximation is poor (Tipton 2015, Psychological Methods 20,
/// 375-393).
bool HasDoubtfulDf(const RegressionData& data)
{
    const std::vector<double> dfs = data.output.GetRobustDf();
    return data.request.settings.GetSandwich() == MAConst::SANDWICH_CR2 &&
           std::any_of(dfs.begin(), dfs.end(), [](double df) { return HasValue(df) && df < 4.0; });
}

} // namespace

ReportSections RobustTestsSection(const RegressionData& data)
{
    const MARegOutputStats& output = data.output;
    if (output.GetRobustStdError().empty())
        return {};
    ReportSection section = {
        "Cluster-robust tests",
        {{"Parameter", data.ParameterNames(), true},
         data.StdErrorColumn("Robust SE", output.GetRobustStdError()),
         {IntervalHeader("Interval", data.level),
          EstimateTexts({{}, output.GetRobustCILower(), output.GetRobustCIUpper()}, data.decimals)},
         {"t", TextsOf(output.GetRobustVal(), data.numbers)},
         {"df", TextsOf(output.GetRobustDf(), data.numbers)},
         {"p", TextsOf(output.GetRobustSig(), PValueText)}},
        {fmt::format("{} clusters; {}.", output.GetRobustClusters(),
                     SandwichWording(data.request.settings.GetSandwich()))}};
    if (HasDoubtfulDf(data))
        section.sentences.push_back("With fewer than 4 degrees of freedom the test is approximate: take a "
                                    "p-value near the limit with caution.");
    return {section};
}

} // namespace host
