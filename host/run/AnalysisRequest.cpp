#include "host/run/AnalysisRequest.h"

#include "host/data/ColumnCoding.h"
#include "host/data/StudyLabels.h"
#include "host/data/Variables.h"

#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

std::vector<int> PositionsOf(const std::vector<std::string>& columns, Variables& variables)
{
    std::vector<int> positions;
    positions.reserve(columns.size());
    for (const std::string& column : columns)
        positions.push_back(variables.PositionOf(column));
    return positions;
}

/// Position of a column of numbers or texts among the variables, -1 when none is named. Fills `labels`.
int LabelledPosition(const ColumnName& column, const DataTable& table, Variables& variables,
                     ValueLabels& labels)
{
    if (!column)
        return -1;
    labels.column = *column;
    const std::size_t position = table.PositionOf(*column);
    if (table.HoldsNumbers(position))
        return variables.PositionOf(column);
    ColumnCoding coding = CodeColumn(table, position);
    labels.texts = std::move(coding.levels);
    return variables.AddCoded(*column, std::move(coding.codes));
}

/// The positions of columns that are not named are -1, which the library takes as not given.
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
    settings.SetTreatmentTimeIndex(variables.PositionOf(options.treatmentTime));
    settings.SetControlTimeIndex(variables.PositionOf(options.controlTime));
    settings.SetEventsIndex(variables.PositionOf(options.events));
    settings.SetNonEventsIndex(variables.PositionOf(options.nonEvents));
    settings.SetTimeIndex(variables.PositionOf(options.time));
    settings.SetSizeIndex(variables.PositionOf(options.size));
    settings.SetCorrelationIndex(variables.PositionOf(options.correlation));
    settings.SetMeanIndex(variables.PositionOf(options.mean));
    settings.SetStdDevIndex(variables.PositionOf(options.stdDev));
    settings.SetInputEffectSizeIndex(variables.PositionOf(options.effectSize));
    settings.SetInputVarianceIndex(variables.PositionOf(options.variance));
    settings.SetInputStdErrorIndex(variables.PositionOf(options.stdError));
    return settings;
}

} // namespace

AnalysisRequest MakeAnalysisRequest(const Options& options, const DataTable& table)
{
    Variables variables(table);
    MAModelSettings settings = SettingsWithPositions(options, variables);
    ValueLabels subgroup;
    ValueLabels cumulative;
    settings.SetSubGroupIndex(LabelledPosition(options.subgroup, table, variables, subgroup));
    settings.SetCommulativeIndex(LabelledPosition(options.cumulative, table, variables, cumulative));
    settings.SetContrastCoefIndex(PositionsOf(options.contrasts, variables));
    std::vector<int> bubbleCovariates = PositionsOf(options.bubbles, variables);
    return {.settings = settings,
            .variables = variables.List(),
            .records = VectorRecordIter(variables.Records()),
            .studyLabels = StudyLabels(options.study, table),
            .subgroup = std::move(subgroup),
            .cumulative = std::move(cumulative),
            .bubbleCovariates = std::move(bubbleCovariates),
            .runsSmallStudyTest = options.runsSmallStudyTest};
}

} // namespace host
