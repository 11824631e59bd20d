#include "host/report/RegressionData.h"

#include "host/text/PlainText.h"
#include "host/text/Wording.h"

namespace host {

RegressionData::RegressionData(const Options& ofOptions, const RegressionRequest& ofRequest,
                               const RegressionAnalysis& ofAnalysis)
    : options(ofOptions),
      request(ofRequest),
      analysis(ofAnalysis),
      output(*analysis.output),
      isRandom(IsRandom(options.settings)),
      level(WordingOfLevel(options.settings)),
      decimals(DecimalsFor(output.GetBetaStandErr()))
{}

std::vector<std::string> RegressionData::ParameterLabels() const
{
    std::vector<std::string> names;
    for (const KXRegrParameter& parameter : output.GetParameters())
        names.push_back(LabelText(ParameterName(parameter, request)));
    return names;
}

ReportColumn RegressionData::EffectColumn(const char* header, const std::vector<double>& values) const
{
    return {header, TextsOf(values, [this](double value) { return FixedText(value, decimals); })};
}

ReportColumn Cell(const char* header, const std::string& text)
{
    return {header, {text}};
}

} // namespace host
