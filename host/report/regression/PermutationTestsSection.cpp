#include "host/report/RegressionSections.h"

#include <fmt/format.h>

using namespace MA_NAMESPACE;

namespace host {

namespace {

std::string PermutationSentence(const RegressionData& data)
{
    const int count = data.output.GetPermutationCount();
    const bool isExact = data.output.GetPermutationExact() == 1;
    return fmt::format(
        "{}{}.",
        isExact ? fmt::format("Exact: all {} permutations", count)
                : fmt::format("{} random permutations (seed {})", count, data.request.settings.GetSeed()),
        data.isRandom ? ", each with its own between-study variance" : "");
}

} // namespace

ReportSections PermutationTestsSection(const RegressionData& data)
{
    if (data.output.GetPermutationSig().empty())
        return {};
    std::vector<std::string> names = data.ParameterNames();
    std::vector<double> pValues = data.output.GetPermutationSig();
    if (HasValue(data.output.GetPermutationModelSig())) {
        names.emplace_back("Model test");
        pValues.push_back(data.output.GetPermutationModelSig());
    }
    return {{"Permutation tests",
             {{"Parameter", names, true}, {"p", TextsOf(pValues, PValueText)}},
             {PermutationSentence(data)}}};
}

} // namespace host
