#include "host/report/RegressionSections.h"
#include "host/report/ReportColumns.h"
#include "host/text/PlainText.h"

#include <utility>

namespace host {

ReportSections PredictionsSection(const RegressionData& data)
{
    const auto& output = data.output;
    if (output.GetPredictedEffect().empty())
        return {};
    std::vector<std::string> texts;
    for (const std::string& prediction : data.options.regression.predictions)
        texts.push_back(LabelText(prediction));
    ReportSection section = {"Predictions", {{"At", texts, true}}, {}};
    for (ReportColumn& column :
         data.EstimateColumns("Predicted", {output.GetPredictedEffect(), output.GetPredictedCILower(),
                                            output.GetPredictedCIUpper()}))
        section.table.push_back(std::move(column));
    section.table.push_back(data.StdErrorColumn("SE", output.GetPredictedStdError()));
    const bool hasIntervals = HasAnyValue(output.GetPredictedPILower());
    if (hasIntervals)
        for (ReportColumn& column : data.EstimateColumns(
                 "Prediction", {{}, output.GetPredictedPILower(), output.GetPredictedPIUpper()}))
            section.table.push_back(std::move(column));
    section.sentences.emplace_back(
        "The interval of a predicted effect is that of the mean effect at these values.");
    if (hasIntervals)
        section.sentences.emplace_back(
            "A prediction interval is that of the true effect of a new study at these values.");
    return {section};
}

} // namespace host
