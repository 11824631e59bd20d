#pragma once

#include "meta_analysis/pooling/MAPooledModel.h"

#include <vector>

namespace MA_NAMESPACE {

/// An effect pooled from 2x2 tables.
struct MATableEstimate
{
    MAEstimate effect; ///< on the scale of the analysis
    /// Of ratio measures: estimate and bounds as ratios. The variance is the exponential of the log-scale
    /// one, the standard error its square root: they serve display, not computation. Without a test.
    MAEstimate ratio;
    int correctedTables = 0; ///< tables that were pooled with a zero-cell correction
};

/// A fixed-effect model of 2x2 tables.
struct MAPooledTables
{
    MAPooledModel model;
    MAEstimate ratio; ///< as in `MATableEstimate`
    int correctedTables = 0;
    int leftOutTables = 0; ///< tables without information, where counts are pooled as read
    /// One per table, from the counts pooled: 0 for a table that is left out, missing for a Peto table of
    /// fewer than two persons.
    std::vector<double> weights;
};

} // namespace MA_NAMESPACE
