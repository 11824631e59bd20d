#pragma once

#include "meta_analysis/analysis/MAAnalysisResults.h"
#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/pooling/MAContinousFixEffectModel.h"
#include "meta_analysis/pooling/MARandomEffectModel.h"
#include "meta_analysis/settings/MAModelSettings.h"
#include "meta_analysis/settings/MARegSettings.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <vector>

namespace MA_NAMESPACE {

class MAModelBuilder;
class MARegBaseTest;
struct MARecordColumns;

/// What the analyses of binary and of continuous outcomes share: the steps of a run, which derived classes
/// make of it, and which a host may call one by one. The results are read through the getters of the base.
///
/// The object keeps a pointer to the settings it is constructed from, which must outlive it. A run begins
/// afresh; operations called one by one append to the lists. One object must not be used by two threads at
/// once. Copying an object may throw std::bad_alloc.
class META_ANALYSIS_EXPORT MABaseModel : public MAAnalysisResults
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

    /// One model per distinct subgroup value, then one of all studies, then the test between the groups.
    /// Under random effects every group has its own between-study variance. Returns the first model's error;
    /// 460001 before studies were read, and while they are not complete.
    KXStatus BuildSubGroupModel();

    /// Per subgroup (or for all studies) the model of the first 1, 2, ... studies in the order of the
    /// cumulative variable; with two or more groups also a model of all studies and the test between the
    /// groups. The per-model lists then hold the last group's steps, or with groups the overall model. Error
    /// 460001 also when the studies have no cumulative values.
    KXStatus BuildCumulativeModel();

    /// Fixed-effect test of each contrast variable, whatever the model of the run. A contrast's own failure
    /// shows in `GetContrastStatus`, not in the status returned.
    KXStatus FixedModelContrastTest();

    /// Estimates how many studies are missing on one side of the funnel, mirrors as many extreme ones about
    /// the centre of the rest, and pools all (Duval and Tweedie 2000, Biometrics 56, 455-463). The per-model
    /// lists keep the overall model. Error 460075 without studies, and those of the pooling classes; warning
    /// 460038 when the number still changed at the iteration limit.
    KXStatus TrimFill();
    /// The studies that trim-and-fill trimmed; before one, those that it would trim, as set or, if automatic,
    /// as the data suggest: the largest where the regression-based test has a positive slope, else the
    /// smallest.
    MAConst::TRIMFSIDE GetTRimFillSide() const;

    /// Coordinates of the funnel and Galbraith plots: row 0 all studies, then one row per subgroup.
    KXStatus ComputePlotStatistics();

    /// Regression-based small-study test of the type in the settings: of all studies, or with two or more
    /// groups of each group and then of all. `settings` gives everything but response and omega weight. A
    /// test that fails, or has fewer than 3 studies, leaves flag 0 and empty rows, and the others go on.
    /// Errors: 460028 fewer than 3 studies in all; 460011 and 460012 the records fail in any of the tests, or
    /// have another number than when the studies were read; the error of the overall test.
    KXStatus RegBasedTest(MultiPassRecordIter& records, const KXVarList& variables,
                          const MARegSettings& settings);

    /// Bubble plot of the studies over each covariate of `settings`: a regression on that covariate alone,
    /// under the model of the run, after `RUN`. Appends an entry per covariate to the bubble lists. Errors:
    /// 460009 the settings are invalid, or a covariate is not in the variable list, 460060 the code of the
    /// estimator is unknown (under random effects), 460011 the iterator cannot be started, 460012 it fails or
    /// the host cancels.
    KXStatus BubblePlot(MultiPassRecordIter& records, const KXVarList& variables,
                        const MARegSettings& settings);

protected:
    /// Adds warnings for combinations of settings and data that deserve a second look, once the studies were
    /// read.
    void CheckInputSettings();
    /// Distinct subgroup values of the studies, ascending.
    std::vector<double> GetUniqGroupElem() const;

    /// The steps that the runs of the derived classes share.
    void CopyRunSettings();
    KXStatus ReadStudies(MultiPassRecordIter& records);
    /// Clears the studies and the record counts, before studies are read.
    void ForgetStudies();
    /// Passes on the result of reading studies. Clears the studies when an error left their columns with
    /// different lengths; the record counts then say how far the pass came. Clears both when memory ran out.
    KXStatus ForgetIfBroken(const KXStatus& result);
    /// After effect sizes were taken from an object that computed them: throws when a copy failed.
    void RequireEffectCopies() const;
    void PrepareGroups();
    void BuildModels(MAModelBuilder& builder);
    void RunTrimFill();
    void AppendImputedToFunnel();

    /// The small-study test of a driver; its results go to the single getters.
    KXStatus RunRegressionTest(MultiPassRecordIter& records, const KXVarList& variables,
                               MAConst::RegBaseTestType type);
    /// The small-study test of a run goes with trim-and-fill, whose side it decides. A failure of the test
    /// itself leaves its values missing, and the run goes on. Two failures end the run: memory that runs out,
    /// which `TAU2_FAILED` means as well because the estimator is a known one, and records that failed,
    /// because trim-and-fill would take its side from a part of them.
    template <class Test>
    KXStatus RunSmallStudyTest(const KXVarList& variables, Test test)
    {
        if (variables.Size() == 0 || !settings_->GetIsTRIMFILL())
            return status_;
        const KXStatus before = status_;
        const int code = test().GetCode();
        if (code == MAStatusCode::OUT_OF_MEMORY || code == MAStatusCode::TAU2_FAILED)
            return status_ = KXStatus(MAStatusCode::OUT_OF_MEMORY);
        if (!IsFailureOfRecords(status_))
            status_ = before;
        return status_;
    }
    static bool IsFailureOfRecords(const KXStatus& status)
    {
        return status.GetCode() == MAStatusCode::ITERATOR_NOT_STARTED ||
               status.GetCode() == MAStatusCode::ITERATOR_FAILED;
    }

    /// The test of heterogeneity between the groups; adds to the stored Q.
    void ComputeCochranStatistics();
    /// Empties the per-model lists that later models fill anew, on request the between-study variances too.
    void ResetEstESStat(bool alsoTau2) { results_.Reset(alsoTau2); }
    /// Appends the rows of the models as one row of the cumulative lists.
    void PushCumuStatistics() { cumulativeRows_.push_back(results_.models); }
    /// Estimate of the number of missing studies from values on the trimmed side's scale, about the estimate
    /// built last.
    int CalcN0(std::vector<double> values, MAConst::TRIMFMETHOD method) const;
    /// One funnel row of vertical coordinates; unless `withoutContour`, its largest one is recorded as the
    /// height of the contours.
    void CalcFunnelPlotY(const std::vector<double>& variances, bool withoutContour);

    /// Subgroup and cumulative analyses, for either way of pooling.
    KXStatus BuildSubGroups(MAModelBuilder& builder);
    KXStatus BuildCumulative(MAModelBuilder& builder);
    MASelection AllStudies() const;
    /// The studies of each group, in study order; without a subgroup variable all are one group.
    std::vector<MASelection> MembersByGroup() const;

    /// Records the warning unless it is already recorded. May throw std::bad_alloc.
    void AddWarning(const KXStatus& warning);
    void AddWarning(int code) { AddWarning(KXStatus(code, true)); }
    void AddWarnings(const std::vector<int>& codes);
    KXStatus SetError(int code) { return status_ = KXStatus(code); }

    bool HasContrasts() const { return !studies_.contrastCoefficients.empty(); }
    bool HasGroups() const { return groupCount_ > 1; }
    /// Whether a pass over the records came to its end, or left studies.
    bool HasRead() const { return recordCount_ != unread || studies_.Count() > 0; }
    /// Whether every study has its group value: false before the studies are complete, when a host can call a
    /// public build already.
    bool HasGroupValues() const { return HasRead() && studies_.groupValue.size() == studies_.Count(); }
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

    /// Whether effects are analysed on the log scale and results shown on the natural one.
    virtual bool IsOnLogScale() const { return false; }

    class InverseVarianceBuilder;

    /// The label of the overall model among the group values.
    static constexpr double overallGroup = -1.0;

private:
    void AppendGroup(const MASelection& members);
    KXStatus BuildCumulativeOverall(MAModelBuilder& builder);
    MASelection InCumulativeOrder(MASelection members) const;

    MARecordColumns ColumnsByRecord(const MASelection& selection) const;
    KXStatus RequireStudiesForTest(MultiPassRecordIter& records);
    MARegSettings TestSettings(int varianceIndex) const;
    void SetUpTest(MARegBaseTest& test, int effectSizeIndex, MAConst::RegBaseTestType type) const;
    void StoreTest(const MARegBaseTest& test);
    void AddWarningsOfFigures(const std::vector<KXStatus>& warnings);
    KXStatus TestSelection(MultiPassRecordIter& records, const KXVarList& variables, MARegSettings& settings,
                           const MASelection& selection);

    MABubbleRows OfStudies(MABubbleRows rows) const;

    MAConst::TRIMFSIDE SideToTrim() const;
    KXStatus TrimAndFill();
    KXStatus TrimIteratively(const std::vector<double>& values, const std::vector<double>& variances);
    KXStatus FillAndPool(const std::vector<double>& values, const std::vector<double>& variances,
                         double sign);
    void WarnOfFilledTau2(const std::vector<double>& effectSizes, const std::vector<double>& variances);
    double PrecisionCovariance() const;

    void PlotAllStudies();
    void PlotGroup(std::size_t group);
    double GroupEstimate(std::size_t group) const;
    void CalcGalbPlotStatistics(const std::vector<double>& effectSizes, const std::vector<double>& scale);
    void CalcFunnelPlotCILine(double centre);
    void CalcFunnelPlotContours();
    double CalcContourXPVal(double yMax, double level) const;

    KXStatus ExtractModelInput(MultiPassRecordIter& records);
    bool ReadReadyMadeStudy(const Record& record, int recordNumber, double quantile);
    void AppendReadyMadeStudy(double effectSize, double variance, double stdError, double quantile);
    KXStatus ReviewComputedStudies(MultiPassRecordIter& records, const std::vector<int>& contrastIndices);
    bool CanPool(std::size_t study) const;
    void ForgetStudyRoles();
    void ReadStudyRoles(const Record& record, const std::vector<int>& contrastIndices);
    template <class Model>
    KXStatus Build(Model model, const std::vector<double>& variances);
    template <class Model>
    KXStatus BuildTest(Model model);
    void RecordTestOutput(const MAContinousFixEffectModel& model) { GetContFixModelTestOutput(model); }
    void RecordTestOutput(const MARandomEffectModel& model);
    void WarnOfDoubtfulTau2(const MARandomEffectModel& model);
    MARandomEffectModel NewStepModel(const std::vector<double>& effectSizes,
                                     const std::vector<double>& variances) const;
    void SetThreshold(MARandomEffectModel& model) const;
    void RecordInverseVarianceWeights(const std::vector<double>& variances, double tau2);
};

} // namespace MA_NAMESPACE
