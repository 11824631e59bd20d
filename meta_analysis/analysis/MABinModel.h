#pragma once

#include "meta_analysis/analysis/MABaseModel.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/pooling/MABinaryFixEffectModel.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

class MABinaryEffectSize;
struct MAZeroCorrection;

/// The analysis of studies that report a 2x2 table: events and non-events in a treatment and a control
/// group. (Ready-made effect sizes of binary outcomes go through it as well.)
///
/// Calling order: fill an `MAModelSettings`, construct, `RUN`, read the getters and `GetWarnings`.
/// Pooling is by inverse variance, or, for raw tables under the fixed-effect model with weight type 1,
/// by Mantel and Haenszel (odds ratio, risk ratio, risk difference) or Peto (Peto odds ratio).
class META_ANALYSIS_EXPORT MABinModel : public MABaseModel
{
public:
    explicit MABinModel(const MAModelSettings& settings);
    MABinModel(const MABinModel&);
    MABinModel& operator=(const MABinModel&);
    ~MABinModel() override;

    /// The whole analysis of the records, afresh; returns the final status. Errors end it, and leave what was
    /// computed before: 460009 one of the four count variables is not given, 460011 the iterator cannot be
    /// started, 460012 it fails or the passes differ, 460075 trim-and-fill without studies, 460099 memory
    /// runs out, and those of the pooling classes. Warnings (`GetWarnings`): 460037 to 460046, 460050,
    /// 460051, 460074, 460100 to 460108.
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
    /// 460001 also when the studies have no tables.
    KXStatus BuildBinSubGroupModel();
    KXStatus BuildBinCumulativeModel();
    KXStatus FixedBinModelContrastTest();

    /// Coordinates of the L'Abbé plot: one row of all studies, or one per subgroup (none for a group value
    /// of -1.0, the label of the overall model). Error 460001 when the studies lack them or their weights.
    KXStatus ComputeLabbePlotStatistics();

    /// Regression-based small-study test of the given type; its results are in the `GetRegBasedTest...`
    /// getters. The error of a failing test becomes the status: 460028 fewer than 3 studies, and those of
    /// `MARegBaseTest`.
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
    std::vector<int> GetNPoolCorrected() const
    {
        return FieldOf(results_.models, &MAModelRow::correctedTables);
    }
    std::vector<std::vector<int>> GetCumNPoolCorrected() const
    {
        return FieldOf(cumulativeRows_, [](const std::vector<MAModelRow>& steps) {
            return FieldOf(steps, &MAModelRow::correctedTables);
        });
    }

    /// Per study, on the ratio scale; empty for risk differences computed from tables. From tables, the
    /// variance and the standard error are the exponentials of the log-scale ones, and so they are for
    /// ready-made effect sizes: they serve display, not computation.
    std::vector<double> GetExpEffectSize() const { return CopyOf(studies_.ratioEffects.effectSize); }
    std::vector<double> GetExpVariance() const { return CopyOf(studies_.ratioEffects.variance); }
    std::vector<double> GetExpStdError() const { return CopyOf(studies_.ratioEffects.stdError); }
    std::vector<double> GetExpCILower() const { return CopyOf(studies_.ratioEffects.ciLower); }
    std::vector<double> GetExpCIUpper() const { return CopyOf(studies_.ratioEffects.ciUpper); }

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
    double GetOverallTFExpEffectSize() const { return FilledExponentiated().estimate; }
    double GetOverallTFExpCILower() const { return FilledExponentiated().ciLower; }
    double GetOverallTFExpCIUpper() const { return FilledExponentiated().ciUpper; }

    /// L'Abbé plot, one row per plot: the outcome of the control group (x) and of the treatment group (y),
    /// log odds or log risks, or risks for the risk difference, so that y - x is the study's effect size; and
    /// the weights.
    std::vector<std::vector<double>> GetLabbePlotX() const { return CopyOf(labbe_.x); }
    std::vector<std::vector<double>> GetLabbePlotY() const { return CopyOf(labbe_.y); }
    std::vector<std::vector<double>> GetLabbePlotW() const { return CopyOf(labbe_.weight); }

protected:
    bool IsOnLogScale() const override { return GetESType() != MAConst::BIN_RISK_DIFFERENCE; }

private:
    class TableBuilder;

    KXStatus BuildModelsByMethod();
    void RunTrimFillUnlessBinary();
    /// False for ready-made effect sizes.
    bool HasTables() const { return HasRead() && studies_.tables.treatmentEvents.size() == studies_.Count(); }
    bool HasLabbePlot() const;
    void AppendLabbeRow(const MASelection& members);
    MAExponentiatedRow FilledExponentiated() const
    {
        return filledResults_.exponentiated.empty() ? MAExponentiatedRow()
                                                    : filledResults_.exponentiated.back();
    }
    std::vector<std::vector<double>> ExponentiatedRows(std::vector<std::vector<double>> rows) const;
    bool UsesBinaryPooling() const;
    void ClassifyTable(const Record& record, int recordNumber);
    void TakeEffectSizes(const MABinaryEffectSize& effectSizes);
    MAZeroCorrection ZeroCorrection() const;
    MABinaryFixEffectModel NewModelOfRun(MATableColumns& tables) const;
    KXStatus AppendModel(MABinaryFixEffectModel model, std::size_t studyCount);
    KXStatus AppendTest(MABinaryFixEffectModel model);
    void AppendExponentiated();
    KXStatus RunSteps(MultiPassRecordIter& records, const KXVarList& variables);

    double zeroDelta_ = 0.5;
    MAConst::POOLEDZEROCELLS pooledZeroCells_ = MAConst::POOLED_ZERO_CELLS_AS_STUDIES;
    std::vector<double>
        labbeX_; ///< of the control group, one entry per study for which effects were computed
    std::vector<double> labbeY_; ///< of the treatment group
    MALabbeRows labbe_;
};

} // namespace MA_NAMESPACE
