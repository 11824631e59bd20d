#include "meta_analysis/regression/MAClusters.h"

#include "meta_analysis/regression/MARegFit.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

/// The rows with a weight, sorted by cluster.
std::vector<std::size_t> RowsByCluster(const MARegFit& fit)
{
    const std::vector<double>& clusters = fit.Design().Rows().clusters;
    std::vector<std::size_t> rows;
    for (std::size_t i = 0; i < clusters.size(); ++i)
        if (fit.Weights()[i] > 0.0)
            rows.push_back(i);
    std::stable_sort(rows.begin(), rows.end(),
                     [&](std::size_t left, std::size_t right) { return clusters[left] < clusters[right]; });
    return rows;
}

void AppendRow(const MARegFit& fit, std::size_t row, double residual, MAClusters& clusters)
{
    const double root = std::sqrt(fit.Weights()[row]);
    const double* const z = fit.Design().Columns().Row(row);
    const std::size_t start = clusters.q.size();
    clusters.q.insert(clusters.q.end(), z, z + clusters.rank);
    double* const q = clusters.q.data() + start;
    SolveTransposed(fit.Factor(), q);
    std::for_each(q, q + clusters.rank, [root](double& value) { value *= root; });
    clusters.variances.push_back(1.0 / fit.Weights()[row]);
    clusters.residuals.push_back(root * residual);
}

} // namespace

MAClusters ClustersOf(const MARegFit& fit)
{
    const std::vector<double>& values = fit.Design().Rows().clusters;
    std::vector<double> residuals;
    fit.Residuals(residuals);
    const std::vector<std::size_t> rows = RowsByCluster(fit);
    MAClusters clusters;
    clusters.rank = fit.Design().Columns().Rank();
    clusters.q.reserve(rows.size() * clusters.rank);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (i == 0 || values[rows[i]] != values[rows[i - 1]])
            clusters.starts.push_back(i);
        AppendRow(fit, rows[i], residuals[rows[i]], clusters);
    }
    clusters.starts.push_back(rows.size());
    return clusters;
}

} // namespace MA_NAMESPACE
