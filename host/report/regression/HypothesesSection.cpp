#include "host/report/RegressionSections.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>

#include <cstddef>

namespace host {

namespace {

std::string JointSentence(const RegressionData& data)
{
    const auto& output = data.output;
    const int df = output.GetHypothesisJointDf();
    const std::string test =
        output.GetHypothesisJointDf2() != 0
            ? fmt::format("F {}, df {} and {}", data.numbers(output.GetHypothesisJointVal()), df,
                          output.GetHypothesisJointDf2())
            : fmt::format("chi² {}, df {}", data.numbers(output.GetHypothesisJointVal()), df);
    const bool areDependent = static_cast<std::size_t>(df) < output.GetHypothesisVal().size();
    return fmt::format("All together: {}, p {}.{}", test, PValueText(output.GetHypothesisJointSig()),
                       areDependent ? " Some follow from others and add no degree of freedom." : "");
}

} // namespace

ReportSections HypothesesSection(const RegressionData& data)
{
    if (data.output.GetHypothesisEstimate().empty())
        return {};
    std::vector<std::string> texts;
    for (const std::string& hypothesis : data.options.regression.hypotheses)
        texts.push_back(LabelText(hypothesis));
    return {{"Hypotheses",
             {{"Weights=value", texts, true},
              data.EffectColumn("Estimate", data.output.GetHypothesisEstimate()),
              data.StdErrorColumn("SE", data.output.GetHypothesisStdError()),
              {data.Statistic(), TextsOf(data.output.GetHypothesisVal(), data.numbers)},
              {"p", TextsOf(data.output.GetHypothesisSig(), PValueText)}},
             {JointSentence(data)}}};
}

} // namespace host
