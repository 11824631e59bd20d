#pragma once

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

class MARegFit;

/// The rows of a fit by cluster, as their sandwich variance needs them. Rows of weight 0 are left out.
struct MAClusters
{
    std::size_t rank = 0;
    std::vector<std::size_t> starts; ///< first row of each cluster, then the number of rows
    std::vector<double> q;           ///< row after row Q = W^(1/2) Z R⁻¹, which has orthonormal columns
    std::vector<double> variances;   ///< 1 / w
    std::vector<double> residuals;   ///< standardised: sqrt(w) e

    std::size_t Count() const { return starts.size() - 1; }
    std::size_t RowCount() const { return variances.size(); }
    const double* Row(std::size_t i) const { return q.data() + i * rank; }
};

/// Clusters in the order of their values. The design has a cluster value for each row.
MAClusters ClustersOf(const MARegFit& fit);

} // namespace MA_NAMESPACE
