#include "host/report/RegressionData.h"

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

bool RegressionData::IsAdjusted() const
{
    return request.settings.IsKnapHartAdjust() &&
           (!request.settings.IsKnapHartIfHeterogeneous() || output.GetFDf2() > 0);
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
