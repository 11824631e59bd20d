#pragma once

#include "meta_analysis/regression/design/MATriangle.h"

#include <vector>

namespace MA_NAMESPACE {

/// A = V diag(λ) V' of a symmetric matrix.
struct MASymmetricEigen
{
    std::vector<double> values; ///< λ, ascending
    MASquareMatrix vectors;     ///< V, an orthonormal column for each value
};

/// By Jacobi rotations, with an absolute error of a few roundings of the largest value (Golub and Van Loan
/// 2013, Matrix Computations, section 8.5). O(n³) a sweep, of which there are few.
MASymmetricEigen EigenOf(MASquareMatrix a);

} // namespace MA_NAMESPACE
