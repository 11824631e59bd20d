#pragma once

#include "meta_analysis/inference/MAEstimate.h"
#include "meta_analysis/inference/MAHeterogeneityMeasures.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/pooling/MATau2Results.h"

#include <limits>

namespace MA_NAMESPACE {

/// Cochran's test of homogeneity, with fixed-effect weights; missing for fewer than two studies.
struct MAHomogeneityTest
{
    double q = KXMV::Missing();
    int df = 0;
    MAPValue pValue;
};

/// Where the true effect of a new study is expected; missing for fixed-effect models.
struct MAPrediction
{
    double lower = KXMV::Missing();
    double upper = KXMV::Missing();
    double probability = KXMV::Missing(); ///< of an effect beyond the threshold of the choice
};

/// Everything that one pooling of studies yields. What the model does not define is missing.
struct MAPooledModel
{
    KXStatus status;
    MAEstimate effect;
    /// Degrees of freedom of the test of the effect by Student's t; infinite for the normal distribution.
    double testDf = std::numeric_limits<double>::infinity();
    MAHomogeneityTest homogeneity;
    MAHeterogeneityMeasures heterogeneity;
    /// (k - 1) / (sum(w) - sum(w²) / sum(w)), w = 1 / v; missing for fixed-effect models.
    double typicalVariance = KXMV::Missing();
    double tau2 = KXMV::Missing(); ///< missing for fixed-effect models, -1 after an error
    MATau2Results tau2Results;
    MAPrediction prediction;
    /// Harmonic mean of the studies' sizes, by which the effect goes back to a natural scale that depends on
    /// it; missing otherwise.
    double size = KXMV::Missing();
};

} // namespace MA_NAMESPACE
