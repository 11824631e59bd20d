#include "meta_analysis/analysis/steps/MABubblePlots.h"

#include "meta_analysis/analysis/steps/MABubblePlot.h"
#include "meta_analysis/analysis/studies/MARecordColumns.h"
#include "meta_analysis/regression/design/MAIterator.h"

#include <utility>

namespace MA_NAMESPACE {

namespace {

/// The rows of a plot with the entries of the valid studies alone, as the effect sizes have them. A study
/// whose record did not come this time has missing ones.
MABubbleRows OfStudies(const std::vector<int>& recordNumbers, MABubbleRows rows)
{
    if (rows.fitted == 0)
        return rows;
    for (std::vector<double>* column :
         {&rows.x, &rows.predicted, &rows.weight, &rows.ciLower, &rows.ciUpper}) {
        std::vector<double> ofStudies;
        ofStudies.reserve(recordNumbers.size());
        for (const int recordNumber : recordNumbers) {
            const auto record = static_cast<std::size_t>(recordNumber);
            ofStudies.push_back(record < column->size() ? (*column)[record] : KXMV::Missing());
        }
        *column = std::move(ofStudies);
    }
    return rows;
}

} // namespace

MABubblePlots PlotBubbles(MultiPassRecordIter& records, const KXVarList& variables,
                          const MARegSettings& regression, const MAStudies& studies, int recordCount,
                          const MAModelSettings& settings, MAConst::MODELTYPE type)
{
    const MARecordColumns columns = ColumnsByRecord(studies, AllOf(studies), recordCount);
    MAIterator iterator(records, variables, columns.effectSizes, columns.variances);
    MARegSettings plotSettings(regression);
    plotSettings.SetConfidenceLevel(settings.GetCILevel());
    plotSettings.SetTau2Search(settings.GetTau2Search());
    MABubblePlot plot(plotSettings, iterator.GetVarList());
    plot.SetEffectSizeIndex(iterator.GetEffectSizeIndex());
    plot.SetVarianceIndex(iterator.GetVarianceIndex());
    plot.SetModelType(type);
    plot.SetCenter(settings.GetCenterBubblePlot());
    plot.SetCurveNPoints(settings.GetBubbleCurveNPoints());

    MABubblePlots result;
    for (const int covariate : regression.GetCovariates()) {
        result.status = plot.Compute(iterator, covariate);
        if (result.status.IsError())
            return result;
        result.warnings.insert(result.warnings.end(), plot.GetWarnings().begin(), plot.GetWarnings().end());
        result.plots.push_back(OfStudies(studies.recordNumber, plot.GetRows()));
    }
    result.status = KXStatus();
    return result;
}

} // namespace MA_NAMESPACE
