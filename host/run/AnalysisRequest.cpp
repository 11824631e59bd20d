#include "host/run/AnalysisRequest.h"

#include "host/data/ColumnCoding.h"
#include "host/data/StudyLabels.h"
#include "host/data/Variables.h"
#include "host/text/TextParsing.h"

#include <algorithm>
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

/// The most decimals that a record's estimate and limits have in the file, trailing zeros too.
std::vector<double> PrintedDecimals(const Options& options, const DataTable& table)
{
    std::vector<double> decimals(table.RowCount(), 0.0);
    for (const ColumnName& column : {options.effectSize, options.ciLower, options.ciUpper}) {
        const std::size_t position = table.PositionOf(*column);
        for (std::size_t row = 0; row < decimals.size(); ++row)
            decimals[row] =
                std::max(decimals[row], static_cast<double>(DecimalsIn(table.TrimmedText(row, position))));
    }
    return decimals;
}

/// The decimals are a variable of codes, which no column of numbers is taken for, whatever its name.
void SetInterval(const Options& options, const DataTable& table, Variables& variables,
                 MAInputSettings& settings)
{
    if (!options.ciLower || !options.ciUpper)
        return;
    settings.SetInputCILowerIndex(variables.PositionOf(options.ciLower));
    settings.SetInputCIUpperIndex(variables.PositionOf(options.ciUpper));
    settings.SetInputDecimalsIndex(variables.AddCoded("decimals", PrintedDecimals(options, table)));
}

void SetSummaryPositions(const Options& options, Variables& variables, MAInputSettings& settings)
{
    settings.SetTreatmentMedianIndex(variables.PositionOf(options.treatmentSummary.median));
    settings.SetTreatmentQ1Index(variables.PositionOf(options.treatmentSummary.q1));
    settings.SetTreatmentQ3Index(variables.PositionOf(options.treatmentSummary.q3));
    settings.SetTreatmentMinIndex(variables.PositionOf(options.treatmentSummary.minimum));
    settings.SetTreatmentMaxIndex(variables.PositionOf(options.treatmentSummary.maximum));
    settings.SetControlMedianIndex(variables.PositionOf(options.controlSummary.median));
    settings.SetControlQ1Index(variables.PositionOf(options.controlSummary.q1));
    settings.SetControlQ3Index(variables.PositionOf(options.controlSummary.q3));
    settings.SetControlMinIndex(variables.PositionOf(options.controlSummary.minimum));
    settings.SetControlMaxIndex(variables.PositionOf(options.controlSummary.maximum));
}

/// The positions of columns that are not named are -1, which the library takes as not given.
MAModelSettings SettingsWithPositions(const Options& options, const DataTable& table, Variables& variables)
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
    SetInterval(options, table, variables, settings);
    settings.SetInputPValueIndex(variables.PositionOf(options.pValue));
    SetSummaryPositions(options, variables, settings);
    return settings;
}

} // namespace

AnalysisRequest MakeAnalysisRequest(const Options& options, const DataTable& table)
{
    Variables variables(table);
    MAModelSettings settings = SettingsWithPositions(options, table, variables);
    ValueLabels subgroup;
    ValueLabels cumulative;
    settings.SetSubGroupIndex(LabelledPosition(options.subgroup, table, variables, subgroup));
    settings.SetCommulativeIndex(LabelledPosition(options.cumulative, table, variables, cumulative));
    settings.SetOmitMissingSubgroup(!options.keepsMissingGroups);
    settings.SetOmitMissingCumulative(true);
    settings.SetContrastCoefIndex(PositionsOf(options.contrasts, variables));
    std::vector<int> bubbleCovariates = PositionsOf(options.bubbles, variables);
    return {.settings = settings,
            .variables = variables.List(),
            .records = VectorRecordIter(variables.Records()),
            .studyLabels = StudyLabels(options.study, table),
            .lines = RecordLines(table),
            .subgroup = std::move(subgroup),
            .cumulative = std::move(cumulative),
            .label = options.label,
            .bubbleCovariates = std::move(bubbleCovariates),
            .runsSmallStudyTest = options.runsSmallStudyTest,
            .hasDrapery = options.picture.hasDrapery,
            .hasPredictionBand = options.picture.hasPredictionBand,
            .forest = MakeForestRequest(options, table),
            .numbers = {options.report.digits}};
}

} // namespace host
