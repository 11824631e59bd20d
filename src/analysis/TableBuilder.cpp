#include "meta_analysis/analysis/TableBuilder.h"

#include "meta_analysis/effectsize/MANormalTest.h"
#include "meta_analysis/pooling/MABinaryPooling.h"

#include <cmath>

namespace MA_NAMESPACE {

namespace {

MATable TableOf(const MATableColumns& tables, std::size_t study)
{
    return {tables.treatmentEvents[study], tables.treatmentNonEvents[study], tables.controlEvents[study],
            tables.controlNonEvents[study]};
}

} // namespace

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

KXStatus MABinModel::TableBuilder::BuildTables(const MATableColumns& tables)
{
    return analysis_.BuildBinModel(tables.treatmentEvents, tables.treatmentNonEvents, tables.controlEvents,
                                   tables.controlNonEvents);
}

KXStatus MABinModel::TableBuilder::Build(const MASelection& selection)
{
    return BuildTables(SelectedTables(selection));
}

KXStatus MABinModel::TableBuilder::BuildTest(const MASelection& selection)
{
    const MATableColumns tables = SelectedTables(selection);
    return analysis_.BuildBinOnlyTestModel(tables.treatmentEvents, tables.treatmentNonEvents,
                                           tables.controlEvents, tables.controlNonEvents);
}

KXStatus MABinModel::TableBuilder::BuildPrefixes(const MASelection& selection)
{
    analysis_.status_ = KXStatus();
    WithBinaryPooling(analysis_.effectType_, [&](auto pooling) { AppendPrefixes(selection, pooling); });
    return analysis_.status_;
}

/// On running sums, taken in the order of a fit of each prefix, so that the results are the same.
template <class Pooling>
void MABinModel::TableBuilder::AppendPrefixes(const MASelection& selection, Pooling pooling)
{
    const MATableColumns& tables = analysis_.studies_.tables;
    const double quantile = TwoSidedNormalQuantile(analysis_.alpha_);
    for (const std::size_t study : selection) {
        pooling.Add(TableOf(tables, study));
        AppendRow(pooling, quantile);
    }
    if (!analysis_.RecordsWeights(selection.size()))
        return;
    for (std::size_t study = 0; study < selection.size(); ++study)
        analysis_.weights_.push_back(Pooling::Weight(TableOf(tables, study)));
}

template <class Pooling>
void MABinModel::TableBuilder::AppendRow(const Pooling& pooling, double quantile)
{
    const double estimate = pooling.Estimate();
    const double variance = pooling.Variance();
    const double nullValue = NullOnTestScale<Pooling>(analysis_.settings_->GetNullHypothesis());
    const MANormalInference inference = InferNormal(estimate, variance, nullValue, quantile);
    analysis_.results_.models.push_back({estimate, variance, inference.stdError, inference.zValue,
                                         inference.pValue, inference.ciLower, inference.ciUpper});
    if constexpr (Pooling::onLogScale)
        analysis_.results_.exponentiated.push_back(
            {std::exp(estimate), std::exp(inference.ciLower), std::exp(inference.ciUpper)});
}

} // namespace MA_NAMESPACE
