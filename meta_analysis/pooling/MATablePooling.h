#pragma once

#include "meta_analysis/effectsize/MATable.h"
#include "meta_analysis/effectsize/MAZeroCorrection.h"
#include "meta_analysis/inference/MAEffects.h"
#include "meta_analysis/pooling/MAPooledTables.h"
#include "meta_analysis/settings/MAConst.h"

#include <span>
#include <vector>

namespace MA_NAMESPACE {

/// How counts are pooled, by Mantel and Haenszel or Peto.
struct MACountPoolingChoice
{
    /// Of the studies' effects, and unless `pooledZeroCells` says otherwise of the counts pooled.
    MAZeroCorrection correction;
    MAConst::POOLEDZEROCELLS pooledZeroCells = MAConst::POOLED_ZERO_CELLS_AS_STUDIES;
    double nullHypothesis = 0.0;
    double alpha = 0.05; ///< 1 - confidence level
};

/// How tables are pooled. The null hypothesis is on the natural scale; 0 stands for 1 with a ratio, 1 for 0
/// with the risk difference.
struct MATablePoolingChoice : MACountPoolingChoice
{
    MAConst::BINESTYPE measure = MAConst::BIN_ODDS_RATIO;
};

/// Pools the tables, as read, and tests. A measure outside the enumeration pools nothing: the model is
/// missing and so are the weights. Allocates the weights alone.
MAPooledTables PoolTables(std::span<const MATable> tables, const MATablePoolingChoice& choice);

/// The number of tables without information on the effect, which counts pooled as read leave out.
int CountUninformative(std::span<const MATable> tables, const MATablePoolingChoice& choice);

/// The effects pooled from the first 1, 2, ... tables, on running sums: one pass, and the same digits as
/// `PoolTables` of each prefix with the correction resolved.
std::vector<MATableEstimate> PoolTablePrefixes(std::span<const MATable> tables,
                                               const MATablePoolingChoice& choice);

/// The models of all tables but one, for each in turn, in O(1) each. They equal those of `PoolTables` but for
/// rounding, with the correction resolved for all tables, and are empty of a measure that has no pooling.
std::vector<MAPooledModel> PoolTablesWithoutEach(std::span<const MATable> tables,
                                                 const MATablePoolingChoice& choice);

/// Effects of the corrected tables and their variances on the scale of the analysis, missing or not finite
/// where a zero cell leaves none.
struct MATableEffects
{
    std::vector<double> effectSizes;
    std::vector<double> variances;

    MAEffects AsEffects() const { return {effectSizes, variances}; }
};

/// Empty for a measure outside the enumeration.
MATableEffects EffectsOfTables(std::span<const MATable> tables, const MATablePoolingChoice& choice);

} // namespace MA_NAMESPACE
