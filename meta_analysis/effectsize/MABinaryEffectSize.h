#pragma once

#include "meta_analysis/effectsize/MAEstimateColumns.h"
#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/settings/MAConst.h"
#include "meta_analysis/settings/Memory.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

struct MACountColumns;
struct MATable;

/// Effect sizes of 2x2 tables: odds ratio, Peto odds ratio, risk ratio or risk difference, each with its
/// variance, confidence interval, z value and two-sided significance.
///
/// For study i with treatment events a, treatment non-events b, control events c and control non-events d:
///     odds ratio       ad / (bc)
///     Peto odds ratio  exp((a - E) / V), with the hypergeometric mean E and variance V of a
///     risk ratio       (a / (a + b)) / (c / (c + d))
///     risk difference  a / (a + b) - c / (c + d)
///
/// Calling order: construct, set the four count vectors and the options, `ComputeEffectSizeStatistics`,
/// read the getters. The vectors are the caller's, must outlive the object, and receive the zero-cell
/// correction: afterwards they hold the corrected counts. Use an object once: a second computation
/// corrects the counts again and appends further z values and significances.
///
/// The status is sticky. Once a setter has refused a vector (LENGTH_MISMATCH), every later setter and the
/// computation do nothing and return that error.
class META_ANALYSIS_EXPORT MABinaryEffectSize
{
public:
    MABinaryEffectSize();
    MABinaryEffectSize(const MABinaryEffectSize&);
    MABinaryEffectSize& operator=(const MABinaryEffectSize&);
    virtual ~MABinaryEffectSize();

    /// Count vectors, one entry per study. The first fixes the study count; error LENGTH_MISMATCH for another
    /// length.
    KXStatus SetTreatmentGSuccessCounts(std::vector<double>* counts);
    KXStatus SetControlGSuccessCounts(std::vector<double>* counts);
    KXStatus SetTreatmentGFailureCounts(std::vector<double>* counts);
    KXStatus SetControlGFailureCounts(std::vector<double>* counts);

    KXStatus SetZeroCountDelta(double delta);
    /// 1 - confidence level.
    KXStatus SetSignLevel(double alpha);
    KXStatus SetZeroAdjType(MAConst::ZEROADJTYPE type);
    /// A value outside the enumeration computes no effect size. Returns a fresh OK status.
    KXStatus SetEstimationMethod(MAConst::BINESTYPE method);

    /// Adds the zero-count constant to the tables that the adjustment type selects, in the caller's vectors.
    void AdjustZeroCounts();

    /// Corrects the counts, then computes everything. Errors: LENGTH_MISMATCH, OUT_OF_MEMORY.
    KXStatus ComputeEffectSizeStatistics();

    /// Natural scale, one entry per study. Of a ratio measure, the variance, standard error, z value and
    /// significance are the exponentials of the log-scale ones. Undefined entries are missing, or 0 for the
    /// risk difference; their z values and significances mean nothing.
    std::vector<double> GetEffectSizeVal() const { return CopyOf(natural_.value); }
    std::vector<double> GetTreatmentGRatio() const { return CopyOf(natural_.treatmentRatio); }
    std::vector<double> GetControlGRatio() const { return CopyOf(natural_.controlRatio); }
    std::vector<double> GetEffectSizeVariance() const { return CopyOf(natural_.variance); }
    std::vector<double> GetEffectSizeStdError() const { return CopyOf(natural_.stdError); }
    std::vector<double> GetEffectSizeZVal() const { return CopyOf(natural_.zValue); }
    std::vector<double> GetEffectSizeSig() const { return CopyOf(natural_.significance); }
    std::vector<double> GetEffectSizeCIUpper() const { return CopyOf(natural_.ciUpper); }
    std::vector<double> GetEffectSizeCILower() const { return CopyOf(natural_.ciLower); }

    /// Log scale, one entry per study, missing where undefined; of the risk difference empty, or all missing.
    std::vector<double> GetLogEffectSizeVal() const { return CopyOf(log_.value); }
    std::vector<double> GetLogTreatmentGRatio() const { return CopyOf(log_.treatmentRatio); }
    std::vector<double> GetLogControlGRatio() const { return CopyOf(log_.controlRatio); }
    std::vector<double> GetLogEffectSizeVariance() const { return CopyOf(log_.variance); }
    std::vector<double> GetLogEffectSizeStdError() const { return CopyOf(log_.stdError); }
    std::vector<double> GetLogEffectSizeZVal() const { return CopyOf(log_.zValue); }
    std::vector<double> GetLogEffectSizeSig() const { return CopyOf(log_.significance); }
    std::vector<double> GetLogEffectSizeCIUpper() const { return CopyOf(log_.ciUpper); }
    std::vector<double> GetLogEffectSizeCILower() const { return CopyOf(log_.ciLower); }

    /// The adjustment type after the correction: `ZERO_ADJUST_ALL_IF_ANY` has become `ZERO_ADJUST_ALL` when
    /// a table had a zero cell.
    MAConst::ZEROADJTYPE GetUpdatedZeroAdjType() const { return zeroAdjustment_; }

private:
    /// Also the odds or risks of both groups.
    struct Scale : MAEstimateColumns
    {
        std::vector<double> treatmentRatio;
        std::vector<double> controlRatio;

        void Restart(std::size_t count, bool hasGroups);
    };

    MACountColumns Counts() const;
    template <class Measure>
    void ComputeBy();
    template <class Measure>
    void AppendStudy(const MATable& table, double quantile);

    std::size_t studyCount_ = 0;
    std::vector<double>* treatmentSuccesses_ = nullptr;
    std::vector<double>* controlSuccesses_ = nullptr;
    std::vector<double>* treatmentFailures_ = nullptr;
    std::vector<double>* controlFailures_ = nullptr;
    MAConst::ZEROADJTYPE zeroAdjustment_ = MAConst::ZERO_ADJUST_EACH;
    double zeroCountDelta_ = 0.5;
    double alpha_ = 0.05;
    MAConst::BINESTYPE method_ = MAConst::BIN_ODDS_RATIO;
    Scale natural_;
    Scale log_;
    KXStatus status_;
};

} // namespace MA_NAMESPACE
