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
};

/// Pools all studies, or those of the selection, by the choice.
MAPooledStudies Pool(const MAStudies& studies, const MAModelChoice& choice);
MAPooledStudies Pool(const MAStudies& studies, const MASelection& selection, const MAModelChoice& choice);

/// Pools effect sizes, whatever the choice says of tables.
MAPooledModel PoolEffects(const MAEffects& effects, const MAModelChoice& choice);

/// Pools tables.
MAPooledStudies PoolCounts(const std::vector<MATable>& tables, const MAModelChoice& choice);

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
