#pragma once

#include "meta_analysis/inference/MAPValue.h"
#include "meta_analysis/platform/common/KXStatus.h"

#include <vector>

namespace MA_NAMESPACE {

class MARegFit;

/// Cluster-robust tests and intervals of the coefficients, one entry per parameter, missing for a redundant
/// one and for one whose parts clusters alone determine.
struct MARobustTests
{
    KXStatus status;
    int clusters = 0;
    std::vector<double> stdErrors;
    std::vector<double> statistics;
    std::vector<double> dfs;
    std::vector<MAPValue> pValues;
    std::vector<double> lowerLimits;
    std::vector<double> upperLimits;
    std::vector<std::vector<double>> covariance; ///< one row per parameter
};

/// The sandwich variance of the settings' type about the fit, with clusters of equal values of the cluster
/// variable:
///
///     V = M [Σ_j X_j'W_jA_j e_j e_j'A_j'W_jX_j] M,     A_j = 1 for CR0, sqrt(m / (m - p)) for CR1.
///
/// CR2 has A_j = D_j B_j^(+1/2) D_j with D_j = Φ_j^(1/2), B_j = D_j (Φ_j - X_jMX_j') D_j, which makes V
/// unbiased under the working model Φ = W⁻¹ (Bell and McCaffrey 2002, Survey Methodology 28, 169-181;
/// Pustejovsky and Tipton 2018, Journal of Business and Economic Statistics 36, 672-683). Its degrees of
/// freedom are Satterthwaite's under that model, those of CR0 and CR1 m - p.
///
/// No matrix has a size other than p: O(k p²) times the terms of `InverseRootTerms`, of which ten to sixty
/// do, and O(m p³). Errors: `ONE_CLUSTER`; `TOO_FEW_CLUSTERS` for CR0 and CR1. Warning: `CLUSTER_DECIDES`.
MARobustTests TestRobustly(const MARegFit& fit);

} // namespace MA_NAMESPACE
