#include "host/report/RegressionSections.h"

#include <cmath>
#include <cstddef>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// The variance inflation of each effect, which all its parameters share; missing where none is estimated.
std::vector<double> InflationOfEffects(const RegressionData& data)
{
    const std::vector<KXRegrParameter> parameters = data.output.GetParameters();
    const std::vector<double> inflation = data.output.GetVarianceInflation();
    std::vector<double> ofEffects(data.output.GetEffectTestVal().size(), KXMV::Missing());
    for (std::size_t i = 0; i < parameters.size(); ++i)
        if (HasValue(inflation[i]))
            ofEffects[static_cast<std::size_t>(parameters[i].GetEffectNumber())] = inflation[i];
    return ofEffects;
}

/// Of effects with several parameters too, on the scale of the square root of an ordinary factor.
std::vector<double> PerDegreeOfFreedom(std::vector<double> inflation, const std::vector<int>& df)
{
    for (std::size_t i = 0; i < inflation.size(); ++i)
        if (HasValue(inflation[i]))
            inflation[i] = std::pow(inflation[i], 1.0 / (2.0 * df[i]));
    return inflation;
}

std::vector<std::string> WholeTexts(const std::vector<int>& values)
{
    std::vector<std::string> texts;
    texts.reserve(values.size());
    for (const int value : values)
        texts.push_back(std::to_string(value));
    return texts;
}

} // namespace

ReportSections EffectTestsSection(const RegressionData& data)
{
    const std::vector<double> statistics = data.output.GetEffectTestVal();
    if (!HasAnyValue(statistics))
        return {};
    const std::vector<int> df = data.output.GetEffectTestDf();
    const std::vector<int> residualDf = data.output.GetEffectTestDf2();
    const std::vector<double> inflation = InflationOfEffects(data);
    const bool isF = residualDf.front() != 0;
    ReportSection section = {"Tests of the effects",
                             {{"Effect", data.EffectNames(), true},
                              {isF ? "F" : "Wald chi²", TextsOf(statistics, data.numbers)},
                              {"df", WholeTexts(df)}},
                             {}};
    if (isF)
        section.table.push_back({"residual df", WholeTexts(residualDf)});
    section.table.push_back({"p", TextsOf(data.output.GetEffectTestSig(), PValueText)});
    section.table.push_back({"GVIF", TextsOf(inflation, data.numbers)});
    section.table.push_back({"GVIF^(1/2df)", TextsOf(PerDegreeOfFreedom(inflation, df), data.numbers)});
    section.sentences.push_back("GVIF: generalized variance inflation (Fox and Monette 1992) under the "
                                "weights of the fit; 1 where the "
                                "effect is not correlated with the others.");
    return {section};
}

} // namespace host
