#pragma once

#include "meta_analysis/analysis/MAModelResults.h"
#include "meta_analysis/analysis/MAStudies.h"
#include "meta_analysis/platform/common/CopyOf.h"
#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/pooling/MAContinousFixEffectModel.h"
#include "meta_analysis/pooling/MARandomEffectModel.h"
#include "meta_analysis/settings/MAModelSettings.h"

#include <vector>

namespace MA_NAMESPACE {

/// What the analyses of binary and of continuous outcomes share: the studies, the pooled models and all
/// results, which a host reads through the getters after `RUN` of a derived class.
///
/// Conventions of the getters: they return copies and have no side effect (an empty copy when memory
/// runs out). A per-study vector has one entry per valid study, in record order. A per-model vector has
/// one entry per fitted model. Effects are on the analysis scale: the log scale for odds and risk
/// ratios, else the natural scale. A quantity that cannot be computed is `KXMV::Missing()`.
///
/// The object keeps a pointer to the settings it is constructed from, which must outlive it. It serves
/// one run: the lists of a second one would be appended behind the first one's. One object must not be
/// used by two threads at once.
class META_ANALYSIS_EXPORT MABaseModel
{
public:
    explicit MABaseModel(const MAModelSettings& settings);
    MABaseModel(const MABaseModel&);
    MABaseModel& operator=(const MABaseModel&);
    virtual ~MABaseModel();

    /// Computes the studies' effect sizes from raw data. Here: nothing, OK.
    virtual KXStatus ESCalc(MultiPassRecordIter& records);

    /// Completes the studies: reads ready-made effect sizes, or removes the studies whose computed effect
    /// size cannot be pooled, and reads the subgroup, cumulative and contrast variables of each.
    /// Errors: 460012 the iterator fails, 460011 it cannot be started. Warnings: 460074, 460037.
    KXStatus ExtractModelInputData(MultiPassRecordIter& records);

    /// Appends `status` to `list` when it is a warning that the list does not hold yet; true if appended.
    static bool AddNewWarning(const KXStatus& status, std::vector<KXStatus>& list);

    /// Pools effect sizes and their variances by the model of the run, and appends the results to the
    /// per-model lists. Returns the model's status (see the pooling classes).
    KXStatus BuildModel(const std::vector<double>& effectSizes, const std::vector<double>& variances);

    /// As `BuildModel`, but records the heterogeneity output alone.
    KXStatus BuildOnlyTestModel(const std::vector<double>& effectSizes, const std::vector<double>& variances);

    /// Pooling objects set up from the settings for the given vectors, which they do not copy.
    MAContinousFixEffectModel NewContFixEffectModel(const std::vector<double>& effectSizes,
                                                    const std::vector<double>& variances) const;
    MARandomEffectModel NewRandomEffectModel(const std::vector<double>& effectSizes,
                                             const std::vector<double>& variances) const;

    /// Append a fitted model's heterogeneity output to the per-model lists.
    void GetContFixModelTestOutput(const MAContinousFixEffectModel& model);
    void GetRandomModelTestOutput(const MARandomEffectModel& model);

    MAConst::MODELTYPE GetModelType() const { return modelType_; }
    MAConst::WEIGHTYPE GetWeightType() const { return weightType_; }
    MAConst::INPUTESTYPE GetInputESType() const { return inputType_; }

    /// Data counts, and the warnings, each once, in order of first occurrence.
    int GetNMissing() const { return missingCount_; }
    int GetNInvalid() const { return invalidCount_; }
    int GetNDropped() const { return droppedCount_; }
    const std::vector<KXStatus>& GetWarnings() const { return warnings_; }

    /// Per study.
    std::vector<double> GetEffectSize() const { return CopyOf(studies_.effects.effectSize); }
    std::vector<double> GetVariance() const { return CopyOf(studies_.effects.variance); }
    std::vector<double> GetStdError() const { return CopyOf(studies_.effects.stdError); }
    std::vector<double> GetZVal() const { return CopyOf(studies_.zValue); }
    std::vector<double> GetSig() const { return CopyOf(studies_.significance); }
    std::vector<double> GetCILower() const { return CopyOf(studies_.effects.ciLower); }
    std::vector<double> GetCIUpper() const { return CopyOf(studies_.effects.ciUpper); }
    /// Total sample sizes; empty for ready-made effect sizes.
    std::vector<double> GetSampSize() const { return CopyOf(studies_.sampleSize); }
    /// Pooling weights: 1 / (variance + tau²), or those of the binary fixed-effect model.
    std::vector<double> GetWeight() const { return CopyOf(weights_); }
    /// Weights as fractions of their sum.
    std::vector<double> GetNormalizedWeight() const;
    /// Record numbers, from 0.
    std::vector<int> GetNonMissingStudyID() const { return CopyOf(studies_.recordNumber); }

    /// Per model: the estimate with its test and confidence interval.
    std::vector<double> GetEstEffectSize() const { return ModelColumn(&MAModelRow::estimate); }
    std::vector<double> GetEstStdError() const { return ModelColumn(&MAModelRow::stdError); }
    /// z, or t under the Knapp-Hartung adjustment.
    std::vector<double> GetEstZVal() const { return ModelColumn(&MAModelRow::statistic); }
    std::vector<double> GetEstSig() const { return ModelColumn(&MAModelRow::significance); }
    std::vector<double> GetEstCILower() const { return ModelColumn(&MAModelRow::ciLower); }
    std::vector<double> GetEstCIUpper() const { return ModelColumn(&MAModelRow::ciUpper); }

    /// Per model: prediction interval and between-study variance; missing for fixed-effect models.
    std::vector<double> GetPILower() const { return HeterogeneityColumn(&MAHeterogeneityRow::piLower); }
    std::vector<double> GetPIUpper() const { return HeterogeneityColumn(&MAHeterogeneityRow::piUpper); }
    std::vector<double> GetTau2Var() const { return CopyOf(results_.tau2); }

    /// Per model: homogeneity test; H² and I² (a fraction); their bounds are missing for random-effects
    /// models.
    std::vector<double> GetHomoTestChisquareQ() const { return HeterogeneityColumn(&MAHeterogeneityRow::q); }
    std::vector<double> GetHomoTestdf() const { return HeterogeneityColumn(&MAHeterogeneityRow::df); }
    std::vector<double> GetHomoTestSig() const
    {
        return HeterogeneityColumn(&MAHeterogeneityRow::significance);
    }
    std::vector<double> GetH2Index() const { return HeterogeneityColumn(&MAHeterogeneityRow::h2); }
    std::vector<double> GetH2CILower() const { return HeterogeneityColumn(&MAHeterogeneityRow::h2Lower); }
    std::vector<double> GetH2CIUpper() const { return HeterogeneityColumn(&MAHeterogeneityRow::h2Upper); }
    std::vector<double> GetI2Index() const { return HeterogeneityColumn(&MAHeterogeneityRow::i2); }
    std::vector<double> GetI2CILower() const { return HeterogeneityColumn(&MAHeterogeneityRow::i2Lower); }
    std::vector<double> GetI2CIUpper() const { return HeterogeneityColumn(&MAHeterogeneityRow::i2Upper); }

    /// Distinct values of the subgroup variable, ascending; -1.0 alone when there is no such variable.
    std::vector<double> GetUniGroup() const { return CopyOf(groupValues_); }
    /// Per model: the number of its studies, and their record numbers.
    std::vector<int> GetGroupN() const { return CopyOf(groupSizes_); }
    std::vector<std::vector<int>> GetSubGroupStudyID() const { return CopyOf(modelRecords_); }

protected:
    /// Adds warnings for combinations of settings and data that deserve a second look.
    void CheckInputSettings();
    /// Distinct subgroup values of the studies, ascending.
    std::vector<double> GetUniqGroupElem() const;

    /// The steps that the runs of the derived classes share.
    void CopyRunSettings();
    KXStatus ReadStudies(MultiPassRecordIter& records);
    void PrepareGroups();
    void BuildOverallModel();

    void AddWarning(int code) { AddNewWarning(KXStatus(code, true), warnings_); }
    KXStatus SetError(int code) { return status_ = KXStatus(code); }

    bool HasCumulativeValues() const { return !studies_.cumulativeValue.empty(); }
    /// Whether a model build records its heterogeneity output (else a whole analysis records it once).
    bool RecordsTestOutput() const { return !HasCumulativeValues() && !trimFillRunning_; }
    /// Whether a build on `studyCount` studies records their weights.
    bool RecordsWeights(std::size_t studyCount) const
    {
        return !trimFillRunning_ && studyCount == studies_.Count();
    }
    /// Whether a build records its study count.
    bool RecordsGroupSize() const { return RecordsTestOutput() && groupCount_ == 1; }
    void AppendTestOutput(const MAHeterogeneityRow& row, double tau2);

    const MAModelSettings* settings_; ///< the host's, not owned
    KXStatus status_;
    double alpha_ = 0.05;

    // Copies made at the start of a run.
    MAConst::MODELTYPE modelType_ = MAConst::MODEL_RANDOM;
    MAConst::TAU2ESTIMATOR tau2Estimator_ = MAConst::TAU2_REML;
    MAConst::WEIGHTYPE weightType_ = MAConst::WEIGHT_INVERSE_VARIANCE;
    MAConst::KNAPPHADJTYPE knappHartung_ = MAConst::KNAPP_HARTUNG_NONE;
    MAConst::INPUTESTYPE inputType_ = MAConst::INPUT_RAW;

    bool trimFillRunning_ = false;

    MAStudies studies_;
    int recordCount_ = 0;
    int missingCount_ = 0;
    int invalidCount_ = 0;
    int droppedCount_ = 0;
    std::vector<KXStatus> warnings_;

    std::vector<double> groupValues_;
    int groupCount_ = 0;

    MAModelResults results_;
    std::vector<MAHeterogeneityRow> heterogeneity_; ///< only grows
    std::vector<double> weights_;
    std::vector<int> groupSizes_;
    std::vector<std::vector<int>> modelRecords_;

private:
    KXStatus ExtractModelInput(MultiPassRecordIter& records);
    bool ReadReadyMadeStudy(const Record& record, int recordNumber, double quantile);
    void AppendReadyMadeStudy(double effectSize, double variance, double stdError, double quantile);
    KXStatus ReviewComputedStudies(MultiPassRecordIter& records, const std::vector<int>& contrastIndices);
    bool CanPool(std::size_t study) const;
    void ReadStudyRoles(const Record& record, const std::vector<int>& contrastIndices);
    template <class Model>
    KXStatus Build(Model model, const std::vector<double>& variances);
    template <class Model>
    KXStatus BuildTest(Model model);
    void RecordTestOutput(const MAContinousFixEffectModel& model) { GetContFixModelTestOutput(model); }
    void RecordTestOutput(const MARandomEffectModel& model) { GetRandomModelTestOutput(model); }

    std::vector<double> ModelColumn(double MAModelRow::*field) const
    {
        return ColumnOf(results_.models, field);
    }
    std::vector<double> HeterogeneityColumn(double MAHeterogeneityRow::*field) const
    {
        return ColumnOf(heterogeneity_, field);
    }
};

} // namespace MA_NAMESPACE
