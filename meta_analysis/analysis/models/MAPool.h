#pragma once

#include "meta_analysis/analysis/models/MAModelChoice.h"
#include "meta_analysis/analysis/studies/MAStudies.h"
#include "meta_analysis/pooling/MAPooling.h"

#include <vector>

namespace MA_NAMESPACE {

/// A model of studies.
struct MAPooledStudies
{
    MAPooledModel model;
    int correctedTables = 0;          ///< tables that were pooled with the zero-cell correction
    std::vector<double> tableWeights; ///< a weight per table, when tables were pooled
};

/// The effect that a model of studies yields, without its heterogeneity.
struct MAPooledRow
{
    MAEstimate effect;
    int correctedTables = 0;
    double size = KXMV::Missing(); ///< as in `MAPooledModel`
};
inline MAPooledRow RowOf(const MAPooledStudies& pooled)
{
    return {pooled.model.effect, pooled.correctedTables, pooled.model.size};
}

/// Calls `use` with the counts of the studies that the choice pools, and with how it pools them.
template <class Use>
auto WithCounts(const MAStudies& studies, const MAModelChoice& choice, Use use)
{
    return choice.poolsRates ? use(studies.rates, choice.rates) : use(studies.tables, choice.tables);
}

/// Pools all studies, or those of the selection, by the choice.
MAPooledStudies Pool(const MAStudies& studies, const MAModelChoice& choice);
MAPooledStudies Pool(const MAStudies& studies, const MASelection& selection, const MAModelChoice& choice);

/// Pools effect sizes, whatever the choice says of tables.
MAPooledModel PoolEffects(const MAEffects& effects, const MAModelChoice& choice);

/// Pools the counts of 2x2 tables, or of two groups' rates.
MAPooledStudies PoolCounts(const std::vector<MATable>& tables, const MATablePoolingChoice& choice);
MAPooledStudies PoolCounts(const std::vector<MAGroupRates>& rates, const MARatePoolingChoice& choice);

/// The choice with its natural values on the scale of the analysis, for these studies.
MAModelChoice ChoiceFor(const MAEffects& effects, const MAModelChoice& choice);

/// The models of the first 1, 2, ... studies of the selection; those before an error when there is one.
struct MAPooledPrefixes
{
    KXStatus status;
    std::vector<MAPooledRow> rows;
};
MAPooledPrefixes PoolPrefixes(const MAStudies& studies, const MASelection& selection,
                              const MAModelChoice& choice);

/// The weights of the studies in the model `pooled` of them: 1 / (variance + tau²), or those of the tables.
std::vector<double> PoolingWeights(const MAStudies& studies, const MAPooledStudies& pooled);

/// The weights 1 / (variance + tau²), tau² being 0 for a fixed-effect model.
std::vector<double> InverseVarianceWeights(const std::vector<double>& variances, const MAPooledModel& model);

} // namespace MA_NAMESPACE
