#pragma once

#include "meta_analysis/regression/design/MAOrthonormalColumns.h"
#include "meta_analysis/regression/design/MATriangle.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// Basic rows of a weighted fit: as many rows as there are columns, by which every row is expressed.
/// `MAWeightedFit` says what for.
struct MABasicRows
{
    std::vector<std::size_t> rows;
    std::vector<double> weights;      ///< of these rows
    std::vector<double> otherWeights; ///< of every row, 0 for these
    std::vector<double> cells;        ///< u of every row, and the dependent counted from the basic rows
    MASquareMatrix directions;        ///< orthonormal rows E with Z_B = L E
    MASquareMatrix basis;             ///< L' (upper)
};

/// The rows that the weights make decide. O(k p²).
MABasicRows ChooseBasicRows(const MAOrthonormalColumns& columns, const std::vector<double>& weights);

} // namespace MA_NAMESPACE
