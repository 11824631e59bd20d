#pragma once

#include "meta_analysis/effectsize/MAEstimateColumns.h"
#include "meta_analysis/effectsize/MAMeansChoice.h"
#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/settings/MAConst.h"
#include "meta_analysis/settings/Memory.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

struct MAMeans;

/// Effect sizes of group means: mean difference, Cohen's d, Hedges' g or Glass's delta, each with its
/// variance, standard error, confidence interval, z value and two-sided significance.
///
/// For study i with sizes nt and nc, means xt and xc, standard deviations st and sc:
///     mean difference  xt - xc
///     Cohen's d        (xt - xc) / sp, sp² the pooled variance
///     Hedges' g        d J(nt + nc - 2), J(m) = Gamma(m/2) / (sqrt(m/2) Gamma((m - 1)/2))
///     Glass's delta    (xt - xc) / s of the chosen group
/// Hedges and Olkin (1985), Statistical Methods for Meta-Analysis, chapter 5.
///
/// Calling order: construct, set the six vectors and the options, `ComputeEffectSizeStatistics`, read the
/// getters. The vectors are the caller's and must outlive the object. A second computation appends further
/// z values and significances. Standard deviations of 0 and groups of size 1 give infinities or NaN.
///
/// The status is sticky: once a setter has refused a vector (LENGTH_MISMATCH), every later setter and the
/// computation do nothing and return that error.
class META_ANALYSIS_EXPORT MAContinousEffectSize
{
public:
    MAContinousEffectSize();
    MAContinousEffectSize(const MAContinousEffectSize&);
    MAContinousEffectSize& operator=(const MAContinousEffectSize&);
    virtual ~MAContinousEffectSize();

    /// Study vectors. The first fixes the study count; error LENGTH_MISMATCH for another length.
    KXStatus SetTreatmentGSizes(const std::vector<double>* sizes);
    KXStatus SetControlGSizes(const std::vector<double>* sizes);
    KXStatus SetTreatmentGMeans(const std::vector<double>* means);
    KXStatus SetControlGMeans(const std::vector<double>* means);
    /// Standard deviations, despite the name.
    KXStatus SetTreatmentGStdErrors(const std::vector<double>* stdDevs);
    KXStatus SetControlGStdErrors(const std::vector<double>* stdDevs);

    /// 1 - confidence level.
    KXStatus SetSignLevel(double alpha);
    /// Pools the variances of a mean difference.
    KXStatus SetEqualAssumptionofVariance(bool equal);
    /// Divides by degrees of freedom in the variances of d and g.
    KXStatus SetVarianceAdjustment(bool adjust);
    /// Whose standard deviation divides in Glass's delta: the treatment group's, else the control group's.
    KXStatus SetGlassDsVarianceDependent(MAConst::STUDYGROUPTYPE group);
    /// A value outside the enumeration computes nothing. Returns a fresh OK status.
    KXStatus SetEstimationMethod(MAConst::CONTESTYPE method);

    /// Errors: LENGTH_MISMATCH, OUT_OF_MEMORY.
    KXStatus ComputeEffectSizeStatistics();

    /// One entry per study.
    std::vector<double> GetEffectSizeVal() const { return CopyOf(results_.value); }
    std::vector<double> GetEffectSizeVariance() const { return CopyOf(results_.variance); }
    std::vector<double> GetEffectSizeStdError() const { return CopyOf(results_.stdError); }
    std::vector<double> GetEffectSizeZVal() const { return CopyOf(results_.zValue); }
    std::vector<double> GetEffectSizeSig() const { return CopyOf(results_.significance); }
    std::vector<double> GetEffectSizeCIUpper() const { return CopyOf(results_.ciUpper); }
    std::vector<double> GetEffectSizeCILower() const { return CopyOf(results_.ciLower); }

private:
    MAMeans MeansOf(std::size_t study) const;
    KXStatus ComputeStatistics();

    std::size_t studyCount_ = 0;
    const std::vector<double>* treatmentSizes_ = nullptr;
    const std::vector<double>* controlSizes_ = nullptr;
    const std::vector<double>* treatmentMeans_ = nullptr;
    const std::vector<double>* controlMeans_ = nullptr;
    const std::vector<double>* treatmentStdDevs_ = nullptr;
    const std::vector<double>* controlStdDevs_ = nullptr;
    double alpha_ = 0.05;
    MAMeansChoice choice_;
    MAEstimateColumns results_;
    KXStatus status_;
};

} // namespace MA_NAMESPACE
