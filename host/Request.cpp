#include "host/Request.h"

#include "host/Variables.h"

#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// Columns that the command does not have are not named, and so not given to the library.
MAModelSettings SettingsWithPositions(const Options& options, Variables& variables)
{
    MAModelSettings settings = options.settings;
    settings.SetTreatmentSuccessIndex(variables.PositionOf(options.treatmentEvents));
    settings.SetTreatmentFailureIndex(variables.PositionOf(options.treatmentNonEvents));
    settings.SetControlSuccessIndex(variables.PositionOf(options.controlEvents));
    settings.SetControlFailureIndex(variables.PositionOf(options.controlNonEvents));
    settings.SetTreatmentNIndex(variables.PositionOf(options.treatmentSize));
    settings.SetTreatmentMeanIndex(variables.PositionOf(options.treatmentMean));
    settings.SetTreatmentStdErrorIndex(variables.PositionOf(options.treatmentStdDev));
    settings.SetTreatmentVarianceIndex(variables.PositionOf(options.treatmentVariance));
    settings.SetControlNIndex(variables.PositionOf(options.controlSize));
    settings.SetControlMeanIndex(variables.PositionOf(options.controlMean));
    settings.SetControlStdErrorIndex(variables.PositionOf(options.controlStdDev));
    settings.SetControlVarianceIndex(variables.PositionOf(options.controlVariance));
    settings.SetInputEffectSizeIndex(variables.PositionOf(options.effectSize));
    settings.SetInputVarianceIndex(variables.PositionOf(options.variance));
    settings.SetInputStdErrorIndex(variables.PositionOf(options.stdError));
    return settings;
}

std::vector<std::string> StudyLabels(const ColumnName& column, const DataTable& table)
{
    std::vector<std::string> labels;
    labels.reserve(table.RowCount());
    if (!column) {
        for (std::size_t row = 1; row <= table.RowCount(); ++row)
            labels.push_back(std::to_string(row));
        return labels;
    }
    const std::size_t position = table.PositionOf(*column);
    for (std::size_t row = 0; row < table.RowCount(); ++row)
        labels.emplace_back(table.Text(row, position));
    return labels;
}

} // namespace

Request MakeRequest(const Options& options, const DataTable& table)
{
    Variables variables(table);
    MAModelSettings settings = SettingsWithPositions(options, variables);
    return {std::move(settings), variables.List(), VectorRecordIter(variables.Records()),
            StudyLabels(options.study, table)};
}

} // namespace host
