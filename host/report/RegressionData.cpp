#include "host/report/RegressionData.h"

#include "host/cli/RawOutcomes.h"
#include "host/report/ReportColumns.h"
#include "host/text/PlainText.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// Ready-made effect sizes may be of any measure. Coefficients go back to the natural scale by an exponential
/// alone: what is transformed otherwise, such as a proportion to its logit, stays so.
Measure MeasureOfRegression(const Options& options)
{
    if (!HasRawData(options))
        return {"effect size", "Effect", false, MAScale::Natural};
    const Measure own = MeasureOf(options.settings);
    Measure measure = options.label ? own.Labelled(LabelText(*options.label)) : own;
    if (measure.isRatio)
        return measure;
    return {measure.AnalysisName(), measure.AnalysisSymbol(), false, MAScale::Natural, measure.hasNoEffect};
}

} // namespace

RegressionData::RegressionData(const Options& ofOptions, const RegressionRequest& ofRequest,
                               const RegressionAnalysis& ofAnalysis)
    : options(ofOptions),
      request(ofRequest),
      analysis(ofAnalysis),
      output(*analysis.output),
      isRandom(IsRandom(options.settings)),
      measure(MeasureOfRegression(ofOptions)),
      level(WordingOfLevel(options.settings)),
      numbers{options.report.digits},
      decimals(numbers.EffectDecimals(output.GetBetaStandErr()))
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

ReportColumn RegressionData::StdErrorColumn(const char* header, const std::vector<double>& values) const
{
    return {header, TextsOf(values, [this](double value) { return numbers.StdErrorText(value, decimals); })};
}

const char* RegressionData::Statistic() const
{
    return IsAdjusted() || request.settings.GetTestDistType() == MAConst::TEST_STUDENT_T ? "t" : "z";
}

std::vector<std::string> RegressionData::ParameterNames() const
{
    std::vector<std::string> names;
    for (const KXRegrParameter& parameter : output.GetParameters())
        names.push_back(LabelText(ParameterName(parameter, request)));
    return names;
}

std::vector<std::string> RegressionData::EffectNames() const
{
    std::vector<std::string> names;
    for (const KXModelEffect& effect : request.settings.GetModelEffects())
        names.push_back(LabelText(EffectName(effect, request)));
    return names;
}

std::vector<ReportColumn> RegressionData::EstimateColumns(const std::string& header,
                                                          const Estimates& estimates) const
{
    std::vector<ReportColumn> columns = {{IntervalHeader(header, level), EstimateTexts(estimates, decimals)}};
    if (measure.isRatio)
        columns.push_back({IntervalHeader(fmt::format("exp({})", header), level),
                           EstimateTexts({Exponentials(estimates.values), Exponentials(estimates.lower),
                                          Exponentials(estimates.upper)},
                                         numbers)});
    return columns;
}

ReportColumn Cell(const char* header, const std::string& text)
{
    return {header, {text}};
}

} // namespace host
