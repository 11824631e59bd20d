#include "meta_analysis/analysis/models/TableBuilder.h"

#include "meta_analysis/effectsize/MAZeroCorrection.h"
#include "meta_analysis/inference/MAInference.h"
#include "meta_analysis/pooling/MABinaryPooling.h"

#include <cmath>

namespace MA_NAMESPACE {

MATableColumns MABinModel::TableBuilder::SelectedTables(const MASelection& selection) const
{
    const MATableColumns& tables = analysis_.studies_.tables;
    return {Selected(tables.treatmentEvents, selection), Selected(tables.treatmentNonEvents, selection),
            Selected(tables.controlEvents, selection), Selected(tables.controlNonEvents, selection)};
}

KXStatus MABinModel::TableBuilder::BuildAll()
{
    return BuildTables(analysis_.studies_.tables);
}

/// A copy of the columns, which receives the zero-cell correction.
KXStatus MABinModel::TableBuilder::BuildTables(MATableColumns tables)
{
    return analysis_.AppendModel(analysis_.NewModelOfRun(tables), tables.treatmentEvents.size());
}

KXStatus MABinModel::TableBuilder::Build(const MASelection& selection)
{
    return BuildTables(SelectedTables(selection));
}

KXStatus MABinModel::TableBuilder::BuildTest(const MASelection& selection)
{
    MATableColumns tables = SelectedTables(selection);
    return analysis_.AppendTest(analysis_.NewModelOfRun(tables));
}

KXStatus MABinModel::TableBuilder::BuildPrefixes(const MASelection& selection)
{
    analysis_.status_ = KXStatus();
    WithBinaryPooling(analysis_.effectType_, [&](auto pooling) {
        AppendPrefixes(selection, MAPooledCounts<decltype(pooling)>(analysis_.pooledZeroCells_));
    });
    return analysis_.status_;
}

/// On running sums, taken in the order of a fit of each prefix, so that the results are the same.
template <class Pooling>
void MABinModel::TableBuilder::AppendPrefixes(const MASelection& selection, MAPooledCounts<Pooling> counts)
{
    const MATableColumns& tables = analysis_.studies_.tables;
    const MAZeroCorrection correction = analysis_.ZeroCorrection();
    const double quantile = TwoSidedNormalQuantile(analysis_.alpha_);
    for (const std::size_t study : selection) {
        const MATable asRead = TableOf(tables, study);
        counts.Add(asRead, correction.Corrected(asRead));
        AppendRow<Pooling>(counts.Effect(), quantile);
    }
    if (!analysis_.RecordsWeights(selection.size()))
        return;
    const bool isCorrected = counts.Effect().isCorrected;
    for (std::size_t study = 0; study < selection.size(); ++study) {
        const MATable asRead = TableOf(tables, study);
        analysis_.weights_.push_back(counts.Weight(asRead, correction.Corrected(asRead), isCorrected));
    }
}

template <class Pooling>
void MABinModel::TableBuilder::AppendRow(const MAPooledEffect& pooled, double quantile)
{
    const double nullValue = NullOnTestScale<Pooling>(analysis_.settings_->GetNullHypothesis());
    const MAEstimate inference = InferNormal(pooled.estimate, pooled.variance, nullValue, quantile);
    analysis_.results_.models.push_back({pooled.estimate, pooled.variance, inference.stdError,
                                         inference.statistic, inference.pValue, inference.ciLower,
                                         inference.ciUpper, pooled.correctedTables});
    if constexpr (Pooling::Measure::onLogScale)
        analysis_.results_.exponentiated.push_back(
            {std::exp(pooled.estimate), std::exp(inference.ciLower), std::exp(inference.ciUpper)});
}

} // namespace MA_NAMESPACE
