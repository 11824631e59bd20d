#pragma once

#include "meta_analysis/effectsize/MAPValue.h"
#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/settings/MAConst.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// Random-effects pooling of effect sizes y with within-study variances v:
///     mean = sum(w y) / sum(w), variance = 1 / sum(w), w = 1 / (v + tau²),
/// with tau² from `MATAU2ESTIMATIOR`, optionally with the Knapp-Hartung adjustment (Knapp and Hartung 2003,
/// Statistics in Medicine 22, 2693-2710), a test against 0, a confidence and a prediction interval, the
/// homogeneity test, H² and I².
///
/// Calling order: construct, set effect sizes, variances and options, `EstimateMeanESStats`, read the
/// getters. The vectors are the caller's and must outlive the object. Everything is on the scale of the
/// effect sizes; a result that is not defined is missing. Cost: O(k) an iteration of the estimator, no
/// allocation.
///
/// The status is sticky: after an error every setter and the estimation do nothing and return it.
class META_ANALYSIS_EXPORT MARandomEffectModel
{
public:
    MARandomEffectModel();
    MARandomEffectModel(const MARandomEffectModel&);
    MARandomEffectModel& operator=(const MARandomEffectModel&);
    virtual ~MARandomEffectModel();

    /// Study vectors. The first fixes the study count k; error 460001 for another length.
    KXStatus SetEffectSizes(const std::vector<double>* effectSizes);
    KXStatus SetVariances(const std::vector<double>* variances);
    /// Under an adjustment, the test and the confidence interval use Student's t with k - 1 degrees of
    /// freedom.
    KXStatus SetKHAdjType(MAConst::KNAPPHADJTYPE type);
    /// 1 - confidence level.
    KXStatus SetSignLevel(double alpha);
    /// Limits of the iterative estimators, see `MATAU2ESTIMATIOR`.
    KXStatus SetMaxIter(int maxIter);
    KXStatus SetMaxStepHalving(int maxStepHalving);
    KXStatus SetConverTol(double tolerance);
    KXStatus SetEstimationType(MAConst::TAU2ESTIMATOR type);

    /// Errors: 460060 the estimator failed (a type outside the enumeration), and those of the estimator.
    KXStatus EstimateMeanESStats();

    double GetBetweenStudyVariance() const { return tau2_; }
    double GetEstEffectSize() const { return mean_; }
    double GetEstESVariance() const { return variance_; }
    /// The variance once more, not its square root: hosts take the root themselves.
    double GetEstESStdError() const { return variance_; }
    /// z, or t under the Knapp-Hartung adjustment.
    double GetEstESTestStat() const { return statistic_; }
    /// Missing, like the confidence interval, for k < 2 under the adjustment.
    double GetEstESSig() const { return pValue_.value; }
    double GetEstESLog10Sig() const { return pValue_.log10; }
    double GetEstESCIUpper() const { return ciUpper_; }
    double GetEstESCILower() const { return ciLower_; }
    /// Prediction interval by Student's t with k - 2 degrees of freedom (Higgins, Thompson and Spiegelhalter
    /// 2009, Journal of the Royal Statistical Society A 172, 137-159). NaN for k < 3; missing then under the
    /// adjustment.
    double GetEstESPIUpper() const { return piUpper_; }
    double GetEstESPILower() const { return piLower_; }
    /// Homogeneity test with fixed-effect weights; missing for k < 2.
    double GetHomogeneityTestQ() const { return q_; }
    int GetHomogeneityTestDf() const { return df_; }
    double GetHomogeneityTestPVal() const { return qPValue_.value; }
    double GetHomogeneityTestLog10PVal() const { return qPValue_.log10; }
    /// From tau² and the typical within-study variance, not from Q; missing for k < 2. I² is a fraction.
    double GetHeterogeneityTestH2() const { return h2_; }
    double GetHeterogeneityTestI2() const { return i2_; }

private:
    KXStatus EstimateTau2();
    void PoolEffectSizes();
    double VarianceFactor() const;
    void TestMean();
    void PredictEffect();
    void TestHomogeneity();

    std::size_t studyCount_ = 0;
    const std::vector<double>* effectSizes_ = nullptr;
    const std::vector<double>* variances_ = nullptr;
    MAConst::KNAPPHADJTYPE knappHartung_ = MAConst::KNAPP_HARTUNG_NONE;
    MAConst::TAU2ESTIMATOR estimator_ = MAConst::TAU2_REML;
    int maxIter_ = 100;
    int maxStepHalving_ = 5;
    double tolerance_ = 1e-6;
    double alpha_ = 0.05;
    double tau2_ = 0.0;
    double mean_ = KXMV::Missing();
    double variance_ = KXMV::Missing();
    double piUpper_ = KXMV::Missing();
    double piLower_ = KXMV::Missing();
    double statistic_ = KXMV::Missing();
    MAPValue pValue_;
    double ciUpper_ = KXMV::Missing();
    double ciLower_ = KXMV::Missing();
    double q_ = KXMV::Missing();
    int df_ = 0;
    MAPValue qPValue_;
    double h2_ = KXMV::Missing();
    double i2_ = KXMV::Missing();
    KXStatus status_;
};

} // namespace MA_NAMESPACE
