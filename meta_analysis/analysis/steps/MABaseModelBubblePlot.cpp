// Bubble plots of the studies over covariates.

#include "meta_analysis/analysis/MABaseModel.h"
#include "meta_analysis/analysis/steps/MABubblePlot.h"
#include "meta_analysis/analysis/studies/MARecordColumns.h"
#include "meta_analysis/regression/design/MAIterator.h"
#include "meta_analysis/settings/Guarded.h"
#include "meta_analysis/settings/MAStatusCode.h"

namespace MA_NAMESPACE {

KXStatus MABaseModel::BubblePlot(MultiPassRecordIter& records, const KXVarList& variables,
                                 const MARegSettings& settings)
{
    return Guarded(status_, [&] {
        const MARecordColumns columns = ColumnsByRecord(AllStudies());
        MAIterator iterator(records, variables, columns.effectSizes, columns.variances);
        MARegSettings plotSettings(settings);
        plotSettings.SetConfidenceLevel(settings_->GetCILevel());
        plotSettings.SetTau2Search(settings_->GetTau2Search());
        MABubblePlot plot(plotSettings, iterator.GetVarList());
        plot.SetEffectSizeIndex(iterator.GetEffectSizeIndex());
        plot.SetVarianceIndex(iterator.GetVarianceIndex());
        plot.SetModelType(modelType_);
        plot.SetCenter(settings_->GetCenterBubblePlot());
        plot.SetCurveNPoints(settings_->GetBubbleCurveNPoints());
        for (const int covariate : settings.GetCovariates()) {
            const KXStatus computed = plot.Compute(iterator, covariate);
            if (computed.IsError())
                return status_ = computed;
            AddWarningsOfFigures(plot.GetWarnings());
            bubbles_.push_back(OfStudies(plot.GetRows()));
        }
        return KXStatus();
    });
}

/// The rows of a plot with the entries of the valid studies alone, as the effect sizes have them. A study
/// whose record did not come this time has missing ones.
MABubbleRows MABaseModel::OfStudies(MABubbleRows rows) const
{
    if (rows.fitted == 0)
        return rows;
    for (std::vector<double>* column :
         {&rows.x, &rows.predicted, &rows.weight, &rows.ciLower, &rows.ciUpper}) {
        std::vector<double> ofStudies;
        ofStudies.reserve(studies_.Count());
        for (const int recordNumber : studies_.recordNumber) {
            const auto record = static_cast<std::size_t>(recordNumber);
            ofStudies.push_back(record < column->size() ? (*column)[record] : KXMV::Missing());
        }
        *column = std::move(ofStudies);
    }
    return rows;
}

} // namespace MA_NAMESPACE
