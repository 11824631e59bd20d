#pragma once

#include "meta_analysis/analysis/MABaseModel.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/pooling/MABinaryFixEffectModel.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// The analysis of studies that report a 2x2 table: events and non-events in a treatment and a control
/// group. (Ready-made effect sizes of binary outcomes go through it as well.)
///
/// Calling order: fill an `MAModelSettings`, construct, `RUN`, read the getters and `GetWarnings`.
/// Pooling is by inverse variance, or, for raw tables under the fixed-effect model with
/// `WEIGHT_BINARY_FIXED`, by Mantel and Haenszel (odds ratio, risk ratio, risk difference) or Peto (Peto odds
/// ratio).
class META_ANALYSIS_EXPORT MABinModel : public MABaseModel
{
public:
    explicit MABinModel(const MAModelSettings& settings);
    MABinModel(const MABinModel&);
    MABinModel& operator=(const MABinModel&);
    ~MABinModel() override;

    /// The whole analysis of the records, afresh; returns the final status. Errors end it, and leave what was
    /// computed before: INPUT_NOT_GIVEN a group's events, or its non-events and size, are not given,
    /// ITERATOR_NOT_STARTED, ITERATOR_FAILED the iterator fails or the passes differ, NO_ANALYSED_STUDY
    /// trim-and-fill without studies, OUT_OF_MEMORY, and those of the pooling classes.
    KXStatus RUN(MultiPassRecordIter& records, const KXVarList& variables);

    /// Effect sizes of the tables. Errors as `RUN`.
    KXStatus ESCalc(MultiPassRecordIter& records) override;

    /// Reads the tables and counts the records that are missing, invalid or dropped.
    KXStatus ExtractRawInputData(MultiPassRecordIter& records);

    /// Pools tables by Mantel and Haenszel or Peto and appends the results to the per-model lists. The
    /// counts are used as they are, without zero-cell correction. (The models of a run correct theirs as
    /// `SetPooledZeroCells` of the settings says.)
    KXStatus BuildBinModel(const std::vector<double>& treatmentEvents,
                           const std::vector<double>& treatmentNonEvents,
                           const std::vector<double>& controlEvents,
                           const std::vector<double>& controlNonEvents);

    /// As `BuildBinModel`, but records the heterogeneity output alone.
    KXStatus BuildBinOnlyTestModel(const std::vector<double>& treatmentEvents,
                                   const std::vector<double>& treatmentNonEvents,
                                   const std::vector<double>& controlEvents,
                                   const std::vector<double>& controlNonEvents);

    /// A pooling object set up from the settings for the given counts, which it does not copy.
    MABinaryFixEffectModel NewBinFixEffectModel(std::vector<double>& treatmentEvents,
                                                std::vector<double>& treatmentNonEvents,
                                                std::vector<double>& controlEvents,
                                                std::vector<double>& controlNonEvents) const;

    /// Appends a fitted model's heterogeneity output to the per-model lists.
    void GetBinFixModelTestOutput(const MABinaryFixEffectModel& model);

    /// The binary forms of `BuildSubGroupModel`, `BuildCumulativeModel` and `FixedModelContrastTest`. Error
    /// LENGTH_MISMATCH also when the studies have no tables.
    KXStatus BuildBinSubGroupModel();
    KXStatus BuildBinCumulativeModel();
    KXStatus FixedBinModelContrastTest();

    /// Coordinates of the L'Abbé plot: one row of all studies, or one per subgroup (none for a group value
    /// of -1.0, the label of the overall model). Error LENGTH_MISMATCH when the studies lack them or their
    /// weights.
    KXStatus ComputeLabbePlotStatistics();

    /// Regression-based small-study test of the given type; its results are in the `GetRegBasedTest...`
    /// getters. The error of a failing test becomes the status: TOO_FEW_FOR_TEST fewer than 3 studies,
    /// and those of `MARegBaseTest`.
    KXStatus RegBasedBinTest(MultiPassRecordIter& records, const KXVarList& variables,
                             MAConst::RegBaseTestType type);

    MAConst::BINESTYPE GetESType() const { return settings_->GetBinaryEstType(); }

    /// Number of studies whose tables had the zero-cell correction for their own effect sizes; 0 for
    /// ready-made effect sizes.
    int GetNZeroCorrected() const;
    /// Number of studies whose tables tell nothing of the effect, such as an odds ratio without events in
    /// either group, and which pooled counts therefore leave out; 0 unless counts are pooled as read.
    int GetNUninformative() const;
    /// Per model, and per group and step of a cumulative analysis: the number of tables that were pooled
    /// with the correction; 0 for models that pool effect sizes.
    std::vector<int> GetNPoolCorrected() const;
    std::vector<std::vector<int>> GetCumNPoolCorrected() const;

    /// Per study, on the ratio scale; empty for risk differences computed from tables. From tables, the
    /// variance and the standard error are the exponentials of the log-scale ones, and so they are for
    /// ready-made effect sizes: they serve display, not computation.
    std::vector<double> GetExpEffectSize() const;
    std::vector<double> GetExpVariance() const;
    std::vector<double> GetExpStdError() const;
    std::vector<double> GetExpCILower() const;
    std::vector<double> GetExpCIUpper() const;

    /// Per model, on the ratio scale; empty for risk differences.
    std::vector<double> GetEstExpEffectSize() const;
    std::vector<double> GetEstExpCILower() const;
    std::vector<double> GetEstExpCIUpper() const;
    /// The prediction intervals, exponentiated entry by entry; missing stays missing.
    std::vector<double> GetExpPILower() const;
    std::vector<double> GetExpPIUpper() const;

    /// Contrasts on the ratio scale, exponentiated entry by entry; so are the cumulative rows, which are
    /// empty for risk differences, and the trim-and-fill model, missing when that did not run.
    std::vector<double> GetContrastExpEstES() const;
    std::vector<double> GetContrastExpEstCILower() const;
    std::vector<double> GetContrastExpEstCIUpper() const;
    std::vector<std::vector<double>> GetCumExpEstES() const;
    std::vector<std::vector<double>> GetCumExpEstCiLower() const;
    std::vector<std::vector<double>> GetCumExpEstCiUpper() const;
    double GetOverallTFExpEffectSize() const;
    double GetOverallTFExpCILower() const;
    double GetOverallTFExpCIUpper() const;

    /// The effect at standard error 0 on the ratio scale; missing as there, and for risk differences.
    double GetRegBasedTestExpLimit() const;
    double GetRegBasedTestExpLimitCILower() const;
    double GetRegBasedTestExpLimitCIUpper() const;

    /// The models of all studies but one on the ratio scale; empty for risk differences.
    std::vector<double> GetLeaveOneOutExpEffectSize() const;
    std::vector<double> GetLeaveOneOutExpCILower() const;
    std::vector<double> GetLeaveOneOutExpCIUpper() const;

    /// L'Abbé plot, one row per plot: the outcome of the control group (x) and of the treatment group (y),
    /// log odds or log risks, or risks for the risk difference, so that y - x is the study's effect size; and
    /// the weights.
    std::vector<std::vector<double>> GetLabbePlotX() const;
    std::vector<std::vector<double>> GetLabbePlotY() const;
    std::vector<std::vector<double>> GetLabbePlotW() const;

private:
    bool HasTables() const;
    bool HasLabbePlot() const;
    bool HasRatios() const;
    /// Whether the trim-and-fill model has a ratio scale: one with imputed studies only for outcomes that the
    /// settings call binary.
    bool HasFilledRatio() const;
};

} // namespace MA_NAMESPACE
