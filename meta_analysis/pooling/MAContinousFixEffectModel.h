#pragma once

#include "meta_analysis/inference/MAHeterogeneityMeasures.h"
#include "meta_analysis/inference/MAPValue.h"
#include "meta_analysis/platform/common/CopyOf.h"
#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/KXStatus.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// Fixed-effect pooling of effect sizes y with variances v by inverse variance:
///     mean = sum(w y) / sum(w), variance = 1 / sum(w), w = 1 / v,
/// with a z test against a null value, a confidence interval, the homogeneity test, H² and I² with
/// intervals, and linear contrasts of the studies' effects.
///
/// Calling order: construct, set effect sizes, variances and options, `EstimateMeanESStats`; for a
/// contrast set its coefficients and call `ContrastTest`; read the getters. The vectors are the caller's,
/// are read at each call and must outlive the object. Everything is on the scale of the effect sizes; a
/// result that is not defined is missing. A variance of 0 gives infinite weight and IEEE results.
///
/// The status is sticky: once a setter has refused a vector (460001), every later setter and the
/// estimation do nothing and return that error.
class META_ANALYSIS_EXPORT MAContinousFixEffectModel
{
public:
    MAContinousFixEffectModel();
    MAContinousFixEffectModel(const MAContinousFixEffectModel&);
    MAContinousFixEffectModel& operator=(const MAContinousFixEffectModel&);
    virtual ~MAContinousFixEffectModel();

    /// Study vectors. The first fixes the study count k; error 460001 for another length.
    KXStatus SetEffectSizes(const std::vector<double>* effectSizes);
    KXStatus SetVariances(const std::vector<double>* variances);
    KXStatus SetContrastCoef(const std::vector<double>* coefficients);
    KXStatus SetNullHypothesis(double value);
    /// 1 - confidence level.
    KXStatus SetSignLevel(double alpha);

    /// Pools and tests. With k < 2 there are no heterogeneity results. Errors: 460001, 460099.
    KXStatus EstimateMeanESStats();

    /// Estimate sum(g y) and variance sum(g² v) of a contrast with coefficients g, its z test and interval.
    /// A study whose coefficient is missing is left out, and warning 460050 returned (not stored). With a
    /// variance of 0, z and significance keep their previous values. Does nothing without coefficients.
    KXStatus ContrastTest();

    double GetEstMeanEffectSize() const { return mean_; }
    double GetEstEffectSizeVariance() const { return variance_; }
    double GetEstEffectSizeStdError() const { return stdError_; }
    double GetEstEffectSizeZVal() const { return zValue_; }
    double GetEstEffectSizeSig() const { return pValue_.value; }
    double GetEstEffectSizeLog10Sig() const { return pValue_.Log10(); }
    double GetEstEffectSizeCIUpper() const { return ciUpper_; }
    double GetEstEffectSizeCILower() const { return ciLower_; }

    double GetHomogeneityTestQ() const { return q_; }
    int GetHomogeneityTestDf() const { return df_; }
    double GetHomogeneityTestPVal() const { return qPValue_.value; }
    double GetHomogeneityTestLog10PVal() const { return qPValue_.Log10(); }

    /// I² is a fraction.
    double GetHeterogeneityTestH2() const { return heterogeneity_.h2; }
    double GetHeterogeneityTestH2CILower() const { return heterogeneity_.h2Lower; }
    double GetHeterogeneityTestH2CIUpper() const { return heterogeneity_.h2Upper; }
    double GetHeterogeneityTestI2() const { return heterogeneity_.i2; }
    double GetHeterogeneityTestI2CILower() const { return heterogeneity_.i2Lower; }
    double GetHeterogeneityTestI2CIUpper() const { return heterogeneity_.i2Upper; }

    double GetContrastGMeans() const { return contrast_; }
    double GetContrastVariance() const { return contrastVariance_; }
    double GetContrastStdError() const { return contrastStdError_; }
    double GetContrastZVal() const { return contrastZValue_; }
    double GetContrastSig() const { return contrastPValue_.value; }
    double GetContrastLog10Sig() const { return contrastPValue_.Log10(); }
    double GetContrastCIUpper() const { return contrastCIUpper_; }
    double GetContrastCILower() const { return contrastCILower_; }

    /// 1 / v, one entry per study.
    std::vector<double> GetEstWeight() const { return CopyOf(weights_); }

private:
    void PoolEffectSizes();
    void TestMean(double quantile);
    void TestHomogeneity(double quantile);

    std::size_t studyCount_ = 0;
    const std::vector<double>* effectSizes_ = nullptr;
    const std::vector<double>* variances_ = nullptr;
    double nullHypothesis_ = 0.0;
    double alpha_ = 0.05;
    double mean_ = KXMV::Missing();
    double variance_ = KXMV::Missing();
    double stdError_ = KXMV::Missing();
    double zValue_ = KXMV::Missing();
    MAPValue pValue_;
    double ciUpper_ = KXMV::Missing();
    double ciLower_ = KXMV::Missing();
    double q_ = KXMV::Missing();
    int df_ = 0;
    MAPValue qPValue_;
    MAHeterogeneityMeasures heterogeneity_;
    const std::vector<double>* contrastCoefficients_ = nullptr;
    std::vector<double> weights_;
    double contrast_ = KXMV::Missing();
    double contrastVariance_ = KXMV::Missing();
    double contrastStdError_ = KXMV::Missing();
    double contrastZValue_ = KXMV::Missing();
    MAPValue contrastPValue_;
    double contrastCIUpper_ = KXMV::Missing();
    double contrastCILower_ = KXMV::Missing();
    KXStatus status_;
};

} // namespace MA_NAMESPACE
