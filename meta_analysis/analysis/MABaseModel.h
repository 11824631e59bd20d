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

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

struct MAModelChoice;
struct MAPooledModel;
struct MAPooledStudies;
struct MAReading;
struct MATrimAndFill;

/// What the analyses of all outcomes share, each in a class of its own: the steps of a run, which a host may
/// also call one by one. The results are read through the getters of the base.
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
    /// Errors: ITERATOR_FAILED, ITERATOR_NOT_STARTED. Warnings: STUDIES_REMOVED, CONTRAST_COUNT_MISMATCH.
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
    /// Under random effects every group has its own between-study variance, unless the settings ask for a
    /// common one. Returns the first model's error; LENGTH_MISMATCH before studies were read, and while they
    /// are not complete.
    KXStatus BuildSubGroupModel();

    /// Per subgroup (or for all studies) the model of the first 1, 2, ... studies in the order of the
    /// cumulative variable; with two or more groups also a model of all studies and the test between the
    /// groups. The per-model lists then hold the last group's steps, or with groups the overall model. Error
    /// LENGTH_MISMATCH also when the studies have no cumulative values.
    KXStatus BuildCumulativeModel();

    /// Fixed-effect test of each contrast variable, whatever the model of the run. A contrast's own failure
    /// shows in `GetContrastStatus`, not in the status returned.
    KXStatus FixedModelContrastTest();

    /// The model of all studies but one, for each in turn, under the model of the run; replaces those of an
    /// earlier call. Returns the first model's error, and keeps the models before it.
    KXStatus LeaveOneOut();

    /// The rank correlation of effects and variances of all studies; replaces that of an earlier call.
    /// Warning: FEW_STUDIES_FOR_TEST.
    KXStatus RankTest();

    /// Deletion diagnostics of the studies under the model of the run; replaces those of an earlier call.
    /// Returns a model's error. Warning: DELETION_UNDEFINED when there is no model without some study.
    KXStatus Influence();

    /// Estimates how many studies are missing on one side of the funnel, mirrors as many extreme ones about
    /// the centre of the rest, and pools all (Duval and Tweedie 2000, Biometrics 56, 455-463). The per-model
    /// lists keep the overall model. Errors: NO_ANALYSED_STUDY, and those of the pooling classes. Warning:
    /// TRIM_FILL_NOT_CONVERGED when the number still changed at the iteration limit.
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
    /// Errors: TOO_FEW_FOR_TEST fewer than 3 studies in all; ITERATOR_NOT_STARTED and ITERATOR_FAILED the
    /// records fail in any of the tests, or have another number than when the studies were read; the error of
    /// the overall test. Warning: FEW_STUDIES_FOR_TEST when one of the tests has fewer than ten studies.
    KXStatus RegBasedTest(MultiPassRecordIter& records, const KXVarList& variables,
                          const MARegSettings& settings);

    /// Bubble plot of the studies over each covariate of `settings`: a regression on that covariate alone,
    /// under the model of the run, after `RUN`. Appends an entry per covariate to the bubble lists. Errors:
    /// INPUT_NOT_GIVEN the settings are invalid, or a covariate is not in the variable list, TAU2_FAILED the
    /// code of the estimator is unknown (under random effects), ITERATOR_NOT_STARTED, ITERATOR_FAILED the
    /// iterator fails or the host cancels.
    KXStatus BubblePlot(MultiPassRecordIter& records, const KXVarList& variables,
                        const MARegSettings& settings);

protected:
    MABaseModel(const MAModelSettings& settings, MAConst::OUTCOMETYPE outcome);

    /// Adds warnings for combinations of settings and data that deserve a second look, once the studies were
    /// read.
    void CheckInputSettings();
    /// Distinct subgroup values of the studies, ascending.
    std::vector<double> GetUniqGroupElem() const;
    /// The test of heterogeneity between the groups; adds to the stored Q.
    void ComputeCochranStatistics();
    /// Empties the per-model lists that later models fill anew, on request the between-study variances too.
    void ResetEstESStat(bool alsoTau2);
    /// Appends the rows of the models as one row of the cumulative lists.
    void PushCumuStatistics();
    /// Estimate of the number of missing studies from values on the trimmed side's scale, about the estimate
    /// built last.
    int CalcN0(std::vector<double> values, MAConst::TRIMFMETHOD method) const;
    /// One funnel row of vertical coordinates; unless `withoutContour`, its largest one is recorded as the
    /// height of the contours.
    void CalcFunnelPlotY(const std::vector<double>& variances, bool withoutContour);

    /// The steps of a run. Returns the first error of a step, which ends the run.
    KXStatus Run(MultiPassRecordIter& records, const KXVarList& variables);
    /// The subgroup and cumulative analyses by a choice of model, and the small-study test of a type.
    KXStatus BuildSubgroups(const MAModelChoice& choice);
    KXStatus BuildCumulative(const MAModelChoice& choice);
    KXStatus RunSmallStudyTest(MultiPassRecordIter& records, const KXVarList& variables,
                               MAConst::RegBaseTestType type);

    /// The model of the run on effect sizes.
    MAModelChoice EffectsChoice() const;
    /// The model of the run on tables, as they were read.
    MAModelChoice TableChoice() const;
    bool PoolsTables() const;

    KXStatus TestContrastsOfTables();

    /// Appends a model that a host built, with a weight per study of it: to the overall model's lists when it
    /// has as many studies as the analysis.
    KXStatus AppendBuilt(const MAPooledStudies& pooled, std::vector<double> weights);
    /// Appends a fitted model's heterogeneity output, for a host.
    KXStatus TakeHeterogeneity(const MAPooledModel& model);

    /// Takes what a pass has read; returns its status.
    KXStatus Take(MAReading reading);
    /// Passes on the result of reading studies. Clears the studies when an error left their columns with
    /// different lengths; the record counts then say how far the pass came. Clears both when memory ran out.
    KXStatus ForgetIfBroken(const KXStatus& result);

    /// Records the warning unless it is already recorded. May throw std::bad_alloc.
    void AddWarning(const KXStatus& warning);
    void AddWarning(int code) { AddWarning(KXStatus(code, true)); }
    void AddWarnings(const std::vector<int>& codes);
    /// Records a warning of one record.
    void AddWarningOf(int record, int code);
    KXStatus SetError(int code) { return status_ = KXStatus(code); }

    /// Whether a pass over the records came to its end, or left studies.
    bool HasRead() const;
    /// Whether every study has its group value: false before the studies are complete, when a host can call a
    /// public build already.
    bool HasGroupValues() const;

private:
    bool HasCumulativeValues() const;
    KXStatus ExtractModelInput(MultiPassRecordIter& records);
    KXStatus ReadStudies(MultiPassRecordIter& records);
    KXStatus BuildModels(const MAModelChoice& choice);
    KXStatus BuildOverall(const MAModelChoice& choice);
    void AppendRow(const MAPooledStudies& pooled);
    void AppendWeights(std::vector<double> weights);
    void AppendHeterogeneity(const MAPooledModel& model);
    void AppendReported(const MAPooledModel& model);
    void AppendGroup(std::vector<std::size_t> members);
    KXStatus TestContrastsOfRun();
    KXStatus InfluenceFrom(const std::vector<MAPooledModel>& leaveOneOut);
    KXStatus TestForSmallStudies(MultiPassRecordIter& records, const KXVarList& variables);
    KXStatus RequireStudiesForTest(MultiPassRecordIter& records);
    KXStatus TestSelection(MultiPassRecordIter& records, const KXVarList& variables,
                           const MARegSettings& settings, const std::vector<std::size_t>& selection);
    KXStatus TestAllStudies(MultiPassRecordIter& records, const KXVarList& variables,
                            MAConst::RegBaseTestType type);
    void WarnOfFewStudies(std::size_t studyCount);
    void WarnOfTau2(const MAPooledModel& model);
    void AddWarningsOfFigures(const std::vector<KXStatus>& warnings);
    KXStatus TrimAndFillInRun();
    KXStatus TrimAndFill();
    void StoreTrimFill(const MATrimAndFill& found);
    void PlotStudies(std::vector<double> effectSizes, const std::vector<double>& variances,
                     const std::vector<double>& scale, double centre);
    void AppendImputedToFunnel();
    double GroupEstimate(std::size_t group) const;
};

} // namespace MA_NAMESPACE
