#pragma once

#include "meta_analysis/bulk/lanes/MALaneKernels.h"
#include "meta_analysis/regression/design/MAWeightedFit.h"

#include <cstddef>

namespace MA_NAMESPACE {

/// The orthonormal columns of several sets side by side: entry (i * (rank + 1) + j) * lanes + lane of the
/// cells is coordinate j of row i, or the residual of the dependent behind the coordinates. Behind the rows
/// of a shorter set stand some of zeros with infinite variance, whose weight of 0 changes no bit of a sum.
struct MALaneFits
{
    const double* cells;
    const double* variances;
    const double* unit; ///< of variances and of t, a number for each lane
    double* weights;    ///< memory for a number for each row and lane
    std::size_t count;  ///< of rows
};

/// The sums of `MAWeightedFit::FitAndSum` with weights unit / (v + t unit), for a set in each lane, but not
/// their `count`. `isExact` says of which sets they have the bits of that function: of those that it does not
/// fit by basic rows.
struct MALaneSums
{
    const double* t; ///< for each lane
    bool withTraces;
    bool withCubic;
    MAProjectionSums* sums;
    bool* isExact;
};

/// The most columns that are fitted side by side: as many as fit into registers and the fastest cache.
constexpr std::size_t mostLaneColumns = 6;
/// The most rows: `MAWeightedFit` sums up more of them in stretches.
constexpr std::size_t mostLaneRows = MAWeightedFit::stretch;

struct MALaneFitKernels
{
    std::size_t laneCount;
    void (*sums[mostLaneColumns])(const MALaneFits& fits, const MALaneSums& sums); ///< by the rank, from 1
};

} // namespace MA_NAMESPACE
