#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/pooling/MAPooledModelGetters.h"
#include "meta_analysis/pooling/MAPoolingChoice.h"
#include "meta_analysis/settings/Memory.h"

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
/// The status is sticky: once a setter has refused a vector (`MAStatusCode::LENGTH_MISMATCH`), every later
/// setter and the estimation do nothing and return that error.
class META_ANALYSIS_EXPORT MAContinousFixEffectModel : public MAPooledModelGetters
{
public:
    MAContinousFixEffectModel();
    MAContinousFixEffectModel(const MAContinousFixEffectModel&);
    MAContinousFixEffectModel& operator=(const MAContinousFixEffectModel&);
    virtual ~MAContinousFixEffectModel();

    /// Study vectors. The first fixes the study count k; error `LENGTH_MISMATCH` for another length.
    KXStatus SetEffectSizes(const std::vector<double>* effectSizes);
    KXStatus SetVariances(const std::vector<double>* variances);
    KXStatus SetContrastCoef(const std::vector<double>* coefficients);
    /// Null value of the z test, on the scale of the effect sizes; 0 unless set.
    KXStatus SetNullHypothesis(double value);
    /// 1 - confidence level, between 0 and 1; 0.05 unless set.
    KXStatus SetSignLevel(double alpha);

    /// Pools and tests. With k < 2 there are no heterogeneity results. Errors: `LENGTH_MISMATCH`,
    /// `OUT_OF_MEMORY`.
    KXStatus EstimateMeanESStats();

    /// Estimate sum(g y) and variance sum(g² v) of a contrast with coefficients g, its z test and interval.
    /// A study whose coefficient is missing is left out, and warning `CONTRAST_COEFFICIENT_MISSING` returned
    /// (not stored). With a variance of 0, z and significance keep their previous values. Does nothing
    /// without coefficients.
    KXStatus ContrastTest();

    /// The pooled effect with its z test and interval. The decimal logarithm of the significance is right
    /// also where the significance underflows.
    double GetEstMeanEffectSize() const { return model_.effect.estimate; }
    double GetEstEffectSizeVariance() const { return model_.effect.variance; }
    double GetEstEffectSizeStdError() const { return model_.effect.stdError; }
    double GetEstEffectSizeZVal() const { return model_.effect.statistic; }
    double GetEstEffectSizeSig() const { return model_.effect.pValue.value; }
    double GetEstEffectSizeLog10Sig() const { return model_.effect.pValue.Log10(); }
    double GetEstEffectSizeCIUpper() const { return model_.effect.ciUpper; }
    double GetEstEffectSizeCILower() const { return model_.effect.ciLower; }

    double GetContrastGMeans() const { return contrast_.estimate; }
    double GetContrastVariance() const { return contrast_.variance; }
    double GetContrastStdError() const { return contrast_.stdError; }
    double GetContrastZVal() const { return contrast_.statistic; }
    double GetContrastSig() const { return contrast_.pValue.value; }
    double GetContrastLog10Sig() const { return contrast_.pValue.Log10(); }
    double GetContrastCIUpper() const { return contrast_.ciUpper; }
    double GetContrastCILower() const { return contrast_.ciLower; }

    /// 1 / v, one entry per study.
    std::vector<double> GetEstWeight() const { return CopyOf(weights_); }

private:
    std::size_t studyCount_ = 0;
    const std::vector<double>* effectSizes_ = nullptr;
    const std::vector<double>* variances_ = nullptr;
    const std::vector<double>* contrastCoefficients_ = nullptr;
    MAFixedEffectChoice choice_;
    std::vector<double> weights_;
    MAEstimate contrast_;
    KXStatus status_;
};

} // namespace MA_NAMESPACE
