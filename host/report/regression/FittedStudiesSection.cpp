#include "host/report/RegressionSections.h"
#include "host/report/ReportColumns.h"
#include "host/text/PlainText.h"

#include <cstddef>

namespace host {

ReportSections FittedStudiesSection(const RegressionData& data)
{
    std::vector<std::string> labels;
    std::vector<double> effects;
    Estimates fitted;
    std::vector<double> residuals;
    std::vector<double> stdErrors;
    std::vector<double> leverages;
    for (const int record : data.analysis.records.used) {
        const auto row = static_cast<std::size_t>(record);
        const Score& score = *data.analysis.scores[row];
        labels.push_back(LabelText(data.request.studyLabels[row]));
        effects.push_back(data.request.records[row].Get(data.request.settings.GetDependent()));
        fitted.values.push_back(score.fit);
        fitted.lower.push_back(score.lower);
        fitted.upper.push_back(score.upper);
        residuals.push_back(score.residual);
        stdErrors.push_back(score.residualStdError);
        leverages.push_back(score.leverage);
    }
    return {{"Studies",
             {{"Study", labels, true},
              data.EffectColumn(data.measure.AnalysisSymbol().c_str(), effects),
              {IntervalHeader("Fitted", data.level), EstimateTexts(fitted, data.decimals)},
              data.EffectColumn("Residual", residuals),
              data.StdErrorColumn("SE", stdErrors),
              {"Leverage", TextsOf(leverages, data.numbers)}},
             {}}};
}

} // namespace host
