#pragma once

#include "meta_analysis/regression/MAClusters.h"
#include "meta_analysis/regression/design/MATriangle.h"
#include "meta_analysis/settings/MAConst.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// Whether the residuals are adjusted, and with them the degrees of freedom: by CR2, and by any type outside
/// the enumeration.
inline bool AdjustsResiduals(MAConst::SANDWICHTYPE type)
{
    return type != MAConst::SANDWICH_CR0 && type != MAConst::SANDWICH_CR1;
}

/// What one cluster contributes to a sandwich variance, in the coordinates in which M is the unit matrix.
/// There a coefficient is d'g, and its variance Σ_j (d's_j)².
struct MAClusterShare
{
    std::vector<double> score;  ///< s = X'WAe
    MASquareMatrix cross;       ///< X'WAX, the factor of covariances between clusters
    MASquareMatrix information; ///< Q'Q; those of all clusters sum to the unit matrix
    MASquareMatrix expected;    ///< expectation of ss' under the working model
    bool hasLargeShare;         ///< of the information
};

/// The share of cluster j. In this form X_j'W_jA_j is Q_j'B_j^(+1/2)Φ_j^(1/2), with
/// B_j = Φ_j(1 - Q_jQ_j')Φ_j a diagonal matrix less one of rank p. Its inverse root is a sum of inverses
/// (`InverseRootTerms`), each of which takes a matrix of size p (Woodbury).
MAClusterShare ShareOf(const MAClusters& clusters, std::size_t j, MAConst::SANDWICHTYPE type);

} // namespace MA_NAMESPACE
