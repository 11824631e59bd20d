#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/regression/MARegPlotRows.h"
#include "meta_analysis/settings/Alpha.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

/// Calls `visit(number, record, row, point)` for each record with a study that the fit could use.
template <class Visit>
KXStatus VisitStudies(const MARegFit& fit, MultiPassRecordIter& records, Visit visit)
{
    if (!records.Start())
        return KXStatus(MAStatusCode::ITERATOR_NOT_STARTED);
    MADesignRow row;
    for (int number = 0; const Record* record = records.Next(); ++number) {
        if (!fit.Design().GetRow(*record, row, false).IsOK() || row.isBad || !row.HasStudy())
            continue;
        const MARegFit::Point point = fit.At(row);
        if (point.weight > 0.0 && std::isfinite(point.weight))
            visit(number, *record, row, point);
    }
    return records.GetError() == 0 ? KXStatus() : KXStatus(MAStatusCode::ITERATOR_FAILED);
}

/// `count` values from the first to the last, evenly spaced.
std::vector<double> EvenlySpaced(double first, double last, int count)
{
    std::vector<double> values;
    values.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        values.push_back(first + (last - first) * (static_cast<double>(i) / (count - 1)));
    return values;
}

/// Adds the design row of a record with another value of the covariate to a sum; a record has a row for every
/// value of a covariate. `row` is workspace.
void AddRowAt(const MADesignMatrix& design, const Record& record, MADesignRow& row, std::vector<double>& sum)
{
    if (!design.GetRow(record, row, true).IsOK())
        return;
    for (std::size_t j = 0; j < sum.size(); ++j)
        sum[j] += row.predictors[j];
}

/// The mean rows of the design, one for each value of the covariate.
KXStatus MeanRows(const MARegFit& fit, MultiPassRecordIter& records, int covariate,
                  const std::vector<double>& values, std::vector<std::vector<double>>& means)
{
    means.assign(values.size(), std::vector<double>(fit.Coefficients().size()));
    int count = 0;
    MADesignRow row;
    const KXStatus status = VisitStudies(fit, records, [&](int, const Record& study, const auto&, auto) {
        Record record = study;
        for (std::size_t i = 0; i < values.size(); ++i) {
            record.Set(covariate, values[i]);
            AddRowAt(fit.Design(), record, row, means[i]);
        }
        ++count;
    });
    for (std::vector<double>& mean : means) {
        for (double& element : mean)
            element /= count;
    }
    return status;
}

} // namespace

KXStatus PlotForest(const MARegFit& fit, const MAPredictionChoice& choice, MultiPassRecordIter& records,
                    std::vector<MARegForestRow>& rows)
{
    const double critical = TwoSidedNormalQuantile(AlphaOf(fit.Design().GetSettings().GetConfidenceLevel()));
    return VisitStudies(fit, records, [&](int number, const Record&, const MADesignRow& row, auto point) {
        const double halfWidth = critical / std::sqrt(row.omegaWeight);
        const MAPredictedEffect fitted = PredictEffectAt(fit, choice, row.predictors);
        rows.push_back({number, row.dependent, row.dependent - halfWidth, row.dependent + halfWidth,
                        point.weight, fitted.effect, fitted.ciLower, fitted.ciUpper});
    });
}

KXStatus PlotBubbles(const MARegFit& fit, const MAPredictionChoice& choice, MultiPassRecordIter& records,
                     int covariate, int points, MARegBubblePlot& plot)
{
    const KXStatus read =
        VisitStudies(fit, records, [&](int, const Record& record, const MADesignRow& row, auto point) {
            plot.studyX.push_back(record.Get(covariate));
            plot.studyEffects.push_back(row.dependent);
            plot.studyWeights.push_back(point.weight);
        });
    if (read.IsError() || plot.studyX.empty())
        return read;
    const auto [first, last] = std::minmax_element(plot.studyX.begin(), plot.studyX.end());
    plot.lineX = EvenlySpaced(*first, *last, std::max(2, points));
    std::vector<std::vector<double>> means;
    const KXStatus status = MeanRows(fit, records, covariate, plot.lineX, means);
    for (const std::vector<double>& mean : means) {
        const MAPredictedEffect predicted = PredictEffectAt(fit, choice, mean);
        plot.lineEffects.push_back(predicted.effect);
        plot.lineLower.push_back(predicted.ciLower);
        plot.lineUpper.push_back(predicted.ciUpper);
        plot.linePILower.push_back(predicted.piLower);
        plot.linePIUpper.push_back(predicted.piUpper);
    }
    return status;
}

} // namespace MA_NAMESPACE
