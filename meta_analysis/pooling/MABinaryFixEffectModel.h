#pragma once

#include "meta_analysis/inference/MAHeterogeneityMeasures.h"
#include "meta_analysis/inference/MAPValue.h"
#include "meta_analysis/platform/common/CopyOf.h"
#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/settings/MAConst.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

template <class Pooling>
class MAPooledCounts;
struct MAPooledEffect;
struct MATable;

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
class META_ANALYSIS_EXPORT MABinaryFixEffectModel
{
public:
    MABinaryFixEffectModel();
    MABinaryFixEffectModel(const MABinaryFixEffectModel&);
    MABinaryFixEffectModel& operator=(const MABinaryFixEffectModel&);
    virtual ~MABinaryFixEffectModel();

    /// Vectors with one entry per study. The first fixes the study count k; error 460001 for another length.
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
    /// 1 - confidence level.
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
    /// Errors: 460001, 460099.
    KXStatus ComputeEffectSizeStatistics();

    /// Estimate sum(g y) and variance sum(g² v) of a contrast with coefficients g, its significance and
    /// interval. A study whose coefficient is missing is left out, and warning 460050 returned (not stored).
    /// All are missing when a table whose coefficient is not 0 has no effect, such as one with a zero cell.
    /// Does nothing without coefficients.
    KXStatus ContrastTest();

    /// Natural scale. The variance of a ratio is the exponential of the log-scale variance, the standard
    /// error its square root: they serve display, not computation.
    double GetEstESVal() const { return natural_.estimate; }
    double GetEstESVariance() const { return natural_.variance; }
    double GetEstESStdError() const { return natural_.stdError; }
    double GetEstESCIUpper() const { return natural_.ciUpper; }
    double GetEstESCILower() const { return natural_.ciLower; }
    double GetEstESZVal() const { return zValue_; }
    double GetEstESSig() const { return pValue_.value; }
    double GetEstESLog10Sig() const { return pValue_.Log10(); }

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

    double GetContrastTestGMeans() const { return contrast_; }
    /// Both return the contrast's variance, neither a z value nor a standard error; hosts rely on it.
    double GetContrastTestZVal() const { return contrastVariance_; }
    double GetContrastTestStdError() const { return contrastVariance_; }
    double GetContrastTest2SidedSig() const { return contrastPValue_.value; }
    double GetContrastTest2SidedLog10Sig() const { return contrastPValue_.Log10(); }
    double GetContrastTestCIUpper() const { return contrastCIUpper_; }
    double GetContrastTestCILower() const { return contrastCILower_; }

private:
    struct Scale
    {
        double estimate = KXMV::Missing();
        double variance = KXMV::Missing();
        double stdError = KXMV::Missing();
        double ciUpper = KXMV::Missing();
        double ciLower = KXMV::Missing();
    };

    /// Sets the constant of the correction for the analysis, whose user chooses it.
    friend class MABinModel;

    bool HasCounts() const;
    MATable TableOf(std::size_t study) const;
    std::vector<MATable> Tables() const;
    KXStatus ComputeStatistics();
    KXStatus ComputeStudyEffects();
    template <class Pooling>
    void EstimateBy(MAPooledCounts<Pooling> counts, const std::vector<MATable>& asRead);
    template <class Pooling>
    void StoreEstimate(const MAPooledEffect& pooled, double quantile);
    template <class Pooling>
    void TestHomogeneity(const std::vector<std::size_t>& studies, double pooled, double quantile);

    template <class Pooling>
    KXStatus ContrastTestBy(Pooling method);
    template <class Pooling>
    void PrepareContrastTerms();
    bool HasContrastTerm(std::size_t study) const;
    void TestContrast(bool isDefined);

    std::size_t studyCount_ = 0;
    std::vector<double> studyEffects_; ///< natural scale
    std::vector<double> studyLogEffects_;
    std::vector<double>* treatmentSuccesses_ = nullptr;
    std::vector<double>* controlSuccesses_ = nullptr;
    std::vector<double>* treatmentFailures_ = nullptr;
    std::vector<double>* controlFailures_ = nullptr;
    double zeroCountDelta_ = 0.5;
    double nullHypothesis_ = 0.0;
    double alpha_ = 0.05;
    MAConst::ZEROADJTYPE zeroAdjustment_ = MAConst::ZERO_ADJUST_EACH;
    double correctionDelta_ = 0.5;
    MAConst::POOLEDZEROCELLS pooledZeroCells_ = MAConst::POOLED_ZERO_CELLS_AS_STUDIES;
    MAConst::BINESTYPE method_ = MAConst::BIN_ODDS_RATIO;
    std::vector<double> weights_;
    int correctedTables_ = 0;
    Scale natural_;
    Scale log_;
    double zValue_ = KXMV::Missing();
    MAPValue pValue_;
    double q_ = KXMV::Missing();
    int df_ = 0;
    MAPValue qPValue_;
    MAHeterogeneityMeasures heterogeneity_;
    const std::vector<double>* contrastCoefficients_ = nullptr;
    std::vector<double> contrastEffects_; ///< of each study, on the test scale; made by the first contrast
    std::vector<double> contrastVariances_;
    double contrast_ = 0.0;
    double contrastVariance_ = 0.0;
    MAPValue contrastPValue_;
    double contrastCIUpper_ = KXMV::Missing();
    double contrastCILower_ = KXMV::Missing();
    KXStatus status_;
};

} // namespace MA_NAMESPACE
