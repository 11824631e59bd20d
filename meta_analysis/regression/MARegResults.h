#pragma once

#include "meta_analysis/inference/MAPValue.h"
#include "meta_analysis/inference/MAStudyInfluence.h"
#include "meta_analysis/platform/common/KXBitSet.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/regression/KXRegrParameter.h"
#include "meta_analysis/pooling/MATau2Results.h"
#include "meta_analysis/regression/MAPermutationTest.h"
#include "meta_analysis/regression/MAPredictedEffect.h"
#include "meta_analysis/regression/MARobustVariance.h"

#include <memory>
#include <vector>

namespace MA_NAMESPACE {

/// Test of all parameters of a model but the intercept.
struct MAModelTest
{
    double statistic = KXMV::Missing();
    MAPValue pValue;
    int df1 = 0;
    int df2 = 0; ///< of an F test
};

/// Tests and intervals of the coefficients, one entry per parameter, missing for a redundant one.
struct MACoefficientTests
{
    std::vector<double> stdErrors;
    std::vector<double> statistics;
    std::vector<MAPValue> pValues;
    std::vector<double> lowerLimits;
    std::vector<double> upperLimits;
};

/// Tests of hypotheses about the coefficients, one entry per hypothesis, and their joint test.
struct MAHypothesisTests
{
    std::vector<double> estimates;
    std::vector<double> stdErrors;
    std::vector<double> statistics;
    std::vector<MAPValue> pValues;
    MAModelTest joint;
};

/// The heterogeneity that the predictors leave.
struct MAResidualHeterogeneity
{
    double q = KXMV::Missing();
    MAPValue qPValue;
    int df = 0;
    double h2 = KXMV::Missing();
    double i2 = KXMV::Missing();
};

using MARegrParameters = std::vector<KXRegrParameter>;

/// The results of a meta-regression. Those that a build does not compute keep these defaults.
struct MARegResults
{
    /// The test that does not apply: 0 throughout, but for the logarithm of its p-value.
    static constexpr MAModelTest notMade = {0.0, {0.0, KXMV::Missing()}, 0, 0};

    std::shared_ptr<const MARegrParameters> parameters;
    int goodRecords = 0;
    int badRecords = 0;
    double tau2 = 0.0;
    MATau2Results tau2Results;
    std::vector<double> coefficients; ///< missing for a redundant parameter
    KXBitSet nonRedundant;
    MACoefficientTests tests;
    MAModelTest wald = notMade;
    MAModelTest f = notMade;
    double dispersion = 1.0;
    MAResidualHeterogeneity residual;
    double rSquare = 0.0;
    MARobustTests robust;           ///< empty without a cluster variable
    MAPermutationTests permutation; ///< empty without permutations
    MAHypothesisTests hypotheses;
    std::vector<MAModelTest> effectTests;  ///< one per model effect
    std::vector<double> varianceInflation; ///< one per parameter
    std::vector<MAPredictedEffect> predictions;
    MAInfluenceTable influence; ///< of the rows that the fit used
};

} // namespace MA_NAMESPACE
