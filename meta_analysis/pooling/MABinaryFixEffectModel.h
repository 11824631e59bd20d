#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/pooling/MAPooledModelGetters.h"
#include "meta_analysis/settings/MAConst.h"
#include "meta_analysis/settings/Memory.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

struct MACountColumns;
struct MATablePoolingChoice;

/// Fixed-effect pooling of 2x2 tables: Mantel-Haenszel for the odds ratio, risk ratio and risk difference,
/// Peto for the Peto odds ratio; with a z test, a confidence interval, the homogeneity test, H² and I² with
/// intervals, and linear contrasts of the studies' effects.
///
/// Tests, intervals and contrasts are formed on the log scale for ratios and on the natural scale for the
/// risk difference. A result that is not defined is missing, or NaN where the arithmetic gives that.
///
/// Calling order: construct, set the four count vectors and the options, `ComputeEffectSizeStatistics`; for
/// a contrast set its coefficients and call `ContrastTest`; read the getters. The vectors are the caller's,
/// must outlive the object, and receive the zero-cell correction; a second computation corrects them again.
///
/// The status is sticky: after an error every later setter and step does nothing and returns it.
class META_ANALYSIS_EXPORT MABinaryFixEffectModel : public MAPooledModelGetters
{
public:
    MABinaryFixEffectModel();
    MABinaryFixEffectModel(const MABinaryFixEffectModel&);
    MABinaryFixEffectModel& operator=(const MABinaryFixEffectModel&);
    virtual ~MABinaryFixEffectModel();

    /// Vectors with one entry per study. The first fixes the study count k; error
    /// `MAStatusCode::LENGTH_MISMATCH` for another length.
    KXStatus SetTreatmentGSuccessCounts(std::vector<double>* counts);
    KXStatus SetControlGSuccessCounts(std::vector<double>* counts);
    KXStatus SetTreatmentGFailureCounts(std::vector<double>* counts);
    KXStatus SetControlGFailureCounts(std::vector<double>* counts);
    KXStatus SetContrastCoef(const std::vector<double>* coefficients);

    /// Stored without effect: the zero-cell correction of this class always adds 0.5.
    KXStatus SetZeroCountDelta(double delta);
    /// Null value of the z test on the natural scale. 0 stands for 1 with a ratio, 1 for 0 with the risk
    /// difference.
    KXStatus SetNullHypothesis(double value);
    /// 1 - confidence level, between 0 and 1; 0.05 unless set.
    KXStatus SetSignLevel(double alpha);
    /// Correction of the tables for the studies' effects, which the homogeneity test and contrasts use.
    KXStatus SetZeroAdjType(MAConst::ZEROADJTYPE type);
    /// Whether the corrected counts are pooled (default), the counts as read, or the counts as read unless
    /// the pooled effect or its variance is undefined without the correction. Counts pooled as read give the
    /// less biased ratio where events are rare. Then a table without information on the effect (for odds
    /// ratios without events, or without non-events, in both groups; for risk ratios without events in both)
    /// has weight 0 and no part in the homogeneity test, and a pooled effect that stays undefined is NaN.
    KXStatus SetPooledZeroCells(MAConst::POOLEDZEROCELLS rule);
    /// A value outside the enumeration pools nothing. Returns a fresh OK status.
    KXStatus SetEstimationMethod(MAConst::BINESTYPE method);

    /// Corrects the counts, pools and tests. With fewer than two studies there are no heterogeneity results.
    /// Errors: `LENGTH_MISMATCH`, `OUT_OF_MEMORY`.
    KXStatus ComputeEffectSizeStatistics();

    /// Estimate sum(g y) and variance sum(g² v) of a contrast with coefficients g, its significance and
    /// interval. A study whose coefficient is missing is left out, and warning `CONTRAST_COEFFICIENT_MISSING`
    /// returned (not stored). All are missing when a table whose coefficient is not 0 has no effect, such as
    /// one with a zero cell. Does nothing without coefficients.
    KXStatus ContrastTest();

    /// Natural scale. The variance of a ratio is the exponential of the log-scale variance, the standard
    /// error its square root: they serve display, not computation.
    double GetEstESVal() const { return natural_.estimate; }
    double GetEstESVariance() const { return natural_.variance; }
    double GetEstESStdError() const { return natural_.stdError; }
    double GetEstESCIUpper() const { return natural_.ciUpper; }
    double GetEstESCILower() const { return natural_.ciLower; }
    double GetEstESZVal() const { return model_.effect.statistic; }
    double GetEstESSig() const { return model_.effect.pValue.value; }
    double GetEstESLog10Sig() const { return model_.effect.pValue.Log10(); }

    /// Log scale. Of the risk difference these are the logs of the natural values, NaN for negative ones.
    double GetLogEstESVal() const { return log_.estimate; }
    double GetLogEstESVariance() const { return log_.variance; }
    double GetLogEstESStdError() const { return log_.stdError; }
    double GetLogEstESCIUpper() const { return log_.ciUpper; }
    double GetLogEstESCILower() const { return log_.ciLower; }

    /// One entry per study, from the counts pooled; missing for a Peto table of fewer than two persons.
    std::vector<double> GetEstWeight() const { return CopyOf(weights_); }
    /// Number of the tables that were pooled with a correction.
    int GetNPoolCorrected() const { return correctedTables_; }

    double GetContrastTestGMeans() const { return contrast_.estimate; }
    /// Both return the contrast's variance, neither a z value nor a standard error; hosts rely on it.
    double GetContrastTestZVal() const { return contrast_.variance; }
    double GetContrastTestStdError() const { return contrast_.variance; }
    double GetContrastTest2SidedSig() const { return contrast_.pValue.value; }
    double GetContrastTest2SidedLog10Sig() const { return contrast_.pValue.Log10(); }
    double GetContrastTestCIUpper() const { return contrast_.ciUpper; }
    double GetContrastTestCILower() const { return contrast_.ciLower; }

private:
    MACountColumns Counts() const;
    MATablePoolingChoice Choice() const;
    KXStatus ComputeStatistics();
    void SetScales(const MAEstimate& ratio);

    std::size_t studyCount_ = 0;
    std::vector<double>* treatmentSuccesses_ = nullptr;
    std::vector<double>* controlSuccesses_ = nullptr;
    std::vector<double>* treatmentFailures_ = nullptr;
    std::vector<double>* controlFailures_ = nullptr;
    const std::vector<double>* contrastCoefficients_ = nullptr;
    double nullHypothesis_ = 0.0;
    double alpha_ = 0.05;
    MAConst::ZEROADJTYPE zeroAdjustment_ = MAConst::ZERO_ADJUST_EACH;
    MAConst::POOLEDZEROCELLS pooledZeroCells_ = MAConst::POOLED_ZERO_CELLS_AS_STUDIES;
    MAConst::BINESTYPE method_ = MAConst::BIN_ODDS_RATIO;
    std::vector<double> weights_;
    int correctedTables_ = 0;
    MAEstimate natural_;
    MAEstimate log_;
    std::vector<double> tableEffects_; ///< of the corrected tables, with their variances, for contrasts
    std::vector<double> tableVariances_;
    MAEstimate contrast_;
    KXStatus status_;
};

} // namespace MA_NAMESPACE
