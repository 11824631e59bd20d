// The further analyses of a run, which a host may call one by one: each is a step, whose results are
// appended.

#include "meta_analysis/analysis/MAAnalysisState.h"
#include "meta_analysis/analysis/MABaseModel.h"
#include "meta_analysis/analysis/steps/MACumulative.h"
#include "meta_analysis/analysis/steps/MAInfluence.h"
#include "meta_analysis/analysis/steps/MALeaveOneOut.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/Memory.h"
#include "meta_analysis/settings/RegressionSettingsOf.h"

#include <utility>

namespace MA_NAMESPACE {

namespace {

constexpr std::size_t fewestStudiesOfTest = 3;

bool IsFailureOfRecords(const KXStatus& status)
{
    return status.GetCode() == MAStatusCode::ITERATOR_NOT_STARTED ||
           status.GetCode() == MAStatusCode::ITERATOR_FAILED;
}

template <class T>
void Append(std::vector<T>& list, const std::vector<T>& more)
{
    list.insert(list.end(), more.begin(), more.end());
}

} // namespace

// Subgroups, the test between them, and cumulative analysis

std::vector<double> MABaseModel::GetUniqGroupElem() const
{
    return GroupValuesOf(Results().studies);
}

void MABaseModel::AppendGroup(MASelection members)
{
    State().lists.recordNumbers.push_back(Selected(Results().studies.recordNumber, members));
    State().groups.members.push_back(std::move(members));
}

void MABaseModel::ComputeCochranStatistics()
{
    const MAAnalysisState& results = Results();
    const std::size_t groupCount = results.groups.values.size();
    if (groupCount < 2 || results.groups.members.size() < groupCount)
        return;
    const std::vector<MASelection> groups(results.groups.members.begin(),
                                          results.groups.members.begin() +
                                              static_cast<std::ptrdiff_t>(groupCount));
    State().groups.between = TestBetweenGroups(results.studies, groups, results.settings.run.modelType,
                                               results.lists.tau2, results.groups.between);
    if (results.lists.heterogeneity.size() >= groupCount)
        State().groups.meansTest = TestGroupMeans({results.lists.heterogeneity.data(), groupCount},
                                                  settings_->GetCommonTau2() && !HasCumulativeValues());
}

KXStatus MABaseModel::BuildSubGroupModel()
{
    return Guarded(status_, [this] { return BuildSubgroups(EffectsChoice()); });
}

KXStatus MABaseModel::BuildSubgroups(const MAModelChoice& choice)
{
    if (!HasGroupValues())
        return SetError(MAStatusCode::LENGTH_MISMATCH);
    MAAnalysisState& state = State();
    std::vector<MASelection> groups = MembersByGroup(state.studies, state.groups.values);
    const MASubgroups result = AnalyseSubgroups(state.studies, groups, choice);
    for (std::size_t g = 0; g < result.groups.size(); ++g) {
        AppendRow(result.groups[g]);
        AppendReported(result.groups[g].model);
        state.lists.groupSizes.push_back(static_cast<int>(groups[g].size()));
        AppendGroup(std::move(groups[g]));
    }
    if (!result.overall.has_value())
        return status_ = result.status;
    ComputeCochranStatistics();
    state.groups.shownValues.push_back(MAConst::overallGroup);
    AppendRow(*result.overall);
    AppendReported(result.overall->model);
    AppendWeights(PoolingWeights(state.studies, *result.overall));
    return status_ = result.status;
}

KXStatus MABaseModel::BuildCumulativeModel()
{
    return Guarded(status_, [this] { return BuildCumulative(EffectsChoice()); });
}

/// The test between the groups reads one between-study variance per group, which the resets leave in place.
KXStatus MABaseModel::BuildCumulative(const MAModelChoice& choice)
{
    MAAnalysisState& state = State();
    if (!HasGroupValues() || state.studies.cumulativeValue.size() != state.studies.Count())
        return SetError(MAStatusCode::LENGTH_MISMATCH);
    MACumulative result = AnalyseCumulatively(
        state.studies, MembersByGroup(state.studies, state.groups.values), settings_->GetSortType(), choice);
    for (MACumulativeGroup& group : result.groups) {
        state.lists.rows = std::move(group.steps);
        AppendReported(group.whole.model);
        state.lists.groupSizes.push_back(static_cast<int>(group.order.size()));
        AppendGroup(std::move(group.order));
        state.cumulative.values.push_back(std::move(group.values));
        PushCumuStatistics();
    }
    AppendWeights(std::move(result.weights));
    if (result.overall.has_value()) {
        ComputeCochranStatistics();
        state.groups.shownValues.push_back(MAConst::overallGroup);
        state.lists.rows = {RowOf(*result.overall)};
        AppendReported(result.overall->model);
        state.cumulative.values.emplace_back();
        PushCumuStatistics();
    }
    return status_ = result.status;
}

void MABaseModel::PushCumuStatistics()
{
    State().cumulative.steps.push_back(Results().lists.rows);
}

// Contrasts

KXStatus MABaseModel::FixedModelContrastTest()
{
    return Guarded(status_, [this] {
        for (const MAContrast& contrast : TestContrasts(Results().studies, EffectsChoice().fixed)) {
            AddWarning(contrast.status);
            State().contrasts.push_back(contrast);
            State().contrastStatus.push_back(contrast.status.IsWarning() ? 2 : (contrast.isZero ? 1 : 0));
        }
        return status_;
    });
}

KXStatus MABaseModel::TestContrastsOfRun()
{
    if (Results().settings.run.modelType != MAConst::MODEL_FIXED)
        return status_;
    return PoolsTables() && outcome_ == MAConst::OUTCOME_BINARY ? TestContrastsOfTables()
                                                                : FixedModelContrastTest();
}

KXStatus MABaseModel::TestContrastsOfTables()
{
    status_ = KXStatus();
    for (const MAContrast& contrast : TestTableContrasts(Results().studies, TableChoice().tables)) {
        AddWarning(contrast.status);
        State().contrasts.push_back(contrast);
    }
    return status_;
}

// Leave-one-out, influence

KXStatus MABaseModel::LeaveOneOut()
{
    return Guarded(status_, [this] {
        MALeaveOneOut result =
            LeaveEachOut(Results().studies, PoolsTables() ? TableChoice() : EffectsChoice());
        for (const MAPooledModel& model : result.models)
            WarnOfTau2(model);
        State().leaveOneOut = std::move(result.models);
        return status_ = result.status;
    });
}

KXStatus MABaseModel::Influence()
{
    return InfluenceFrom({});
}

KXStatus MABaseModel::InfluenceFrom(const std::vector<MAPooledModel>& leaveOneOut)
{
    return Guarded(status_, [&] {
        MAInfluence result =
            MeasureInfluence(Results().studies, PoolsTables() ? TableChoice() : EffectsChoice(), leaveOneOut);
        if (!result.table.isComplete)
            AddWarning(MAStatusCode::DELETION_UNDEFINED);
        State().influence = std::move(result.table);
        return status_ = result.status;
    });
}

// Small-study tests

/// Reads the studies when nothing was read yet; a run that found none is not repeated.
KXStatus MABaseModel::RequireStudiesForTest(MultiPassRecordIter& records)
{
    if (!HasRead()) {
        State().settings.run = RunSettingsOf(*settings_);
        if (ReadStudies(records).IsError())
            return status_;
    }
    return Results().studies.Count() < fewestStudiesOfTest ? SetError(MAStatusCode::TOO_FEW_FOR_TEST)
                                                           : KXStatus();
}

KXStatus MABaseModel::RunSmallStudyTest(MultiPassRecordIter& records, const KXVarList& variables,
                                        MAConst::RegBaseTestType type)
{
    return Guarded(status_, [&] {
        if (!TestAllStudies(records, variables, type).IsError())
            WarnOfFewStudies(Results().studies.Count());
        return status_;
    });
}

KXStatus MABaseModel::TestAllStudies(MultiPassRecordIter& records, const KXVarList& variables,
                                     MAConst::RegBaseTestType type)
{
    return Guarded(status_, [&] {
        if (RequireStudiesForTest(records).IsError())
            return status_;
        const MAAnalysisState& results = Results();
        const MASmallStudyTest test = TestSmallStudies(
            records, variables, results.studies, AllOf(results.studies), results.counts.records,
            {type, results.settings.run.modelType, results.settings.tables.correction.type,
             SmallStudyTestSettingsOf(*settings_)});
        if (test.hasPassed) {
            const bool hasLimit = type == MAConst::REG_TEST_EFFECT_ON_STD_ERROR;
            State().runTest = {test.Covariate(), hasLimit ? test.Intercept() : MAEstimate(), test.df};
            AddWarningsOfFigures(test.warnings);
        }
        return status_ = test.status;
    });
}

/// The small-study test of a run goes with trim-and-fill, whose side it decides. A failure of the test itself
/// leaves its values missing, and the run goes on. Two failures end the run: memory that runs out, which
/// `TAU2_FAILED` means as well because the estimator is a known one, and records that failed, because
/// trim-and-fill would take its side from a part of them. Nobody asked for the test itself, so that few
/// studies are no warning.
KXStatus MABaseModel::TestForSmallStudies(MultiPassRecordIter& records, const KXVarList& variables)
{
    if (variables.Size() == 0 || !settings_->GetIsTRIMFILL())
        return status_;
    const KXStatus before = status_;
    const int code = TestAllStudies(records, variables, MAConst::REG_TEST_EFFECT_ON_STD_ERROR).GetCode();
    if (code == MAStatusCode::OUT_OF_MEMORY || code == MAStatusCode::TAU2_FAILED)
        return SetError(MAStatusCode::OUT_OF_MEMORY);
    if (!IsFailureOfRecords(status_))
        status_ = before;
    return status_;
}

KXStatus MABaseModel::RegBasedTest(MultiPassRecordIter& records, const KXVarList& variables,
                                   const MARegSettings& settings)
{
    return Guarded(status_, [&] {
        if (RequireStudiesForTest(records).IsError())
            return status_;
        if (Results().groups.AreSeveral()) {
            for (const MASelection& members : MembersByGroup(Results().studies, Results().groups.values)) {
                const KXStatus tested = TestSelection(records, variables, settings, members);
                if (IsFailureOfRecords(tested))
                    return status_ = tested;
            }
        }
        return status_ = TestSelection(records, variables, settings, AllOf(Results().studies));
    });
}

/// One test on some of the studies, appended to the tests' lists also when it fails.
KXStatus MABaseModel::TestSelection(MultiPassRecordIter& records, const KXVarList& variables,
                                    const MARegSettings& settings, const MASelection& selection)
{
    const MAAnalysisState& results = Results();
    State().tests.emplace_back();
    State().tests.back() =
        TestSmallStudies(records, variables, results.studies, selection, results.counts.records,
                         {settings_->GetRegBaseTestType(), results.settings.run.modelType,
                          results.settings.tables.correction.type, settings});
    AddWarningsOfFigures(results.tests.back().warnings);
    if (results.tests.back().hasPassed)
        WarnOfFewStudies(selection.size());
    return results.tests.back().status;
}

KXStatus MABaseModel::RankTest()
{
    return Guarded(status_, [this] {
        const MAStudies& studies = Results().studies;
        State().rankTest = TestRanks({studies.effectSize, studies.variance});
        if (!KXMV::IsMissing(Results().rankTest.tau))
            WarnOfFewStudies(studies.Count());
        return status_;
    });
}

void MABaseModel::WarnOfFewStudies(std::size_t studyCount)
{
    if (studyCount < fewestStudiesToTrust)
        AddWarning(MAStatusCode::FEW_STUDIES_FOR_TEST);
}

// Trim-and-fill

MAConst::TRIMFSIDE MABaseModel::GetTRimFillSide() const
{
    const MAAnalysisState& results = Results();
    if (results.trimFill.side != MAConst::TRIM_SIDE_AUTO)
        return results.trimFill.side;
    return settings_->GetTrimFillSide() != MAConst::TRIM_SIDE_AUTO
               ? settings_->GetTrimFillSide()
               : SuggestedSide(results.studies, results.runTest.effect.estimate);
}

int MABaseModel::CalcN0(std::vector<double> values, MAConst::TRIMFMETHOD method) const
{
    const std::vector<MAPooledRow>& models = Results().lists.rows;
    return models.empty() ? 0 : MissingStudies(std::move(values), models.front().effect.estimate, method);
}

KXStatus MABaseModel::TrimAndFillInRun()
{
    if (!settings_->GetIsTRIMFILL())
        return status_;
    if (!PoolsTables())
        return TrimFill();
    AddWarning(MAStatusCode::TRIM_FILL_NOT_RUN);
    return status_;
}

KXStatus MABaseModel::TrimFill()
{
    return Guarded(status_, [this] { return TrimAndFill(); });
}

KXStatus MABaseModel::TrimAndFill()
{
    MAAnalysisState& state = State();
    if (state.studies.Count() == 0)
        return SetError(MAStatusCode::NO_ANALYSED_STUDY);
    state.trimFill.side = MAConst::TRIM_SIDE_AUTO;
    state.trimFill.side = GetTRimFillSide();
    if (state.lists.rows.empty()) {
        const MAEffects effects = {state.studies.effectSize, state.studies.variance};
        status_ = PoolEffects(effects, ModelOfStep(EffectsChoice())).status;
        if (status_.IsError())
            return status_;
    }
    // The filled model, and those that a host builds later, go by the settings as they are now.
    TakeModelTypes(*settings_, state.settings.run);
    const MAModelChoice choice = WithoutTau2Interval(EffectsChoice());
    const MATrimAndFill found = TrimAndFillStudies(
        state.studies, {state.trimFill.side, settings_->GetTrimFillMethod(), settings_->GetMaxIter(),
                        TrimmingModel(*settings_, choice), choice});
    if (!found.hasConverged)
        AddWarning(MAStatusCode::TRIM_FILL_NOT_CONVERGED);
    if (!found.status.IsError() || found.imputedCount > 0)
        StoreTrimFill(found);
    return status_ = found.status;
}

void MABaseModel::StoreTrimFill(const MATrimAndFill& found)
{
    MATrimFillResults& results = State().trimFill;
    results.imputedCount = found.imputedCount;
    Append(results.imputed.effectSize, found.imputed.effectSize);
    Append(results.imputed.variance, found.imputed.variance);
    Append(results.imputed.stdError, found.imputed.stdError);
    results.model.reset();
    results.hasRatio = found.imputedCount == 0 || settings_->GetOutcomesType() == MAConst::OUTCOME_BINARY;
    if (found.filled.has_value()) {
        results.model = found.filled->effect;
        results.size = found.filled->size;
        WarnOfTau2(*found.filled);
    } else if (found.imputedCount == 0 && !Results().lists.rows.empty()) {
        results.model = Results().lists.rows.back().effect;
        results.size = Results().lists.rows.back().size;
    }
}

} // namespace MA_NAMESPACE
