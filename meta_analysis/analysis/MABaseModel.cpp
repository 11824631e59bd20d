#include "meta_analysis/analysis/MABaseModel.h"

#include "meta_analysis/analysis/MAAnalysisState.h"
#include "meta_analysis/analysis/studies/MACompleteStudies.h"
#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/settings/Alpha.h"
#include "meta_analysis/settings/MASettingsWarnings.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/MAWarnings.h"
#include "meta_analysis/settings/Memory.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace MA_NAMESPACE {

namespace {

constexpr std::size_t expectedWarnings = 4; // most runs have fewer

constexpr int warningsOfFigures[] = {MAStatusCode::TAU2_DOUBTFUL, MAStatusCode::CONFIDENCE_LEVEL_OUTSIDE,
                                     MAStatusCode::NO_ITERATION_ALLOWED,
                                     MAStatusCode::TAU2_INTERVAL_UNAVAILABLE};

/// A single group beside studies that are in none has no model of its own, but in a cumulative analysis.
std::vector<double> ShownValuesOf(const MAAnalysisState& results)
{
    const bool isAlone = results.studies.HasUngrouped() && !results.groups.AreSeveral();
    return isAlone && results.studies.cumulativeValue.empty() ? std::vector<double>{MAConst::overallGroup}
                                                              : results.groups.values;
}

} // namespace

MABaseModel::MABaseModel(const MAModelSettings& settings) : MABaseModel(settings, MAConst::OUTCOME_CONTINUOUS)
{}
MABaseModel::MABaseModel(const MAModelSettings& settings, MAConst::OUTCOMETYPE outcome)
    : MAAnalysisResults(settings, outcome)
{}
MABaseModel::MABaseModel(const MABaseModel&) = default;
MABaseModel& MABaseModel::operator=(const MABaseModel&) = default;
MABaseModel::~MABaseModel() = default;

KXStatus MABaseModel::Run(MultiPassRecordIter& records, const KXVarList& variables)
{
    Restart();
    State().settings.run = RunSettingsOf(*settings_);
    State().warnings.reserve(expectedWarnings);
    if (ReadStudies(records).IsError())
        return status_;
    CheckInputSettings();
    if (outcome_ == MAConst::OUTCOME_BINARY)
        AddWarnings(WarningsOfBinaryRun(*settings_));
    if (outcome_ == MAConst::OUTCOME_MEASURED)
        AddWarnings(WarningsOfMeasuredRun(*settings_));
    State().groups.values = GetUniqGroupElem();
    State().groups.shownValues = ShownValuesOf(Results());
    if (BuildModels(PoolsTables() ? TableChoice() : EffectsChoice()).IsError() ||
        TestContrastsOfRun().IsError())
        return status_;
    if (State().studies.Count() == 1)
        return status_;
    if (settings_->GetLeaveOneOut() && LeaveOneOut().IsError())
        return status_;
    if (settings_->GetInfluence() && InfluenceFrom(Results().leaveOneOut).IsError())
        return status_;
    if (settings_->GetRankTest() && RankTest().IsError())
        return status_;
    if (TestForSmallStudies(records, variables).IsError() || TrimAndFillInRun().IsError() ||
        ComputePlotStatistics().IsError())
        return status_;
    AppendImputedToFunnel();
    return status_;
}

// Reading

KXStatus MABaseModel::ESCalc(MultiPassRecordIter& /*records*/)
{
    return KXStatus();
}

KXStatus MABaseModel::ReadStudies(MultiPassRecordIter& records)
{
    const bool isRaw = State().settings.run.inputType == MAConst::INPUT_RAW;
    const KXStatus computed = isRaw ? ESCalc(records) : KXStatus();
    return computed.IsError() ? status_ = computed : ExtractModelInputData(records);
}

KXStatus MABaseModel::ExtractModelInputData(MultiPassRecordIter& records)
{
    return ForgetIfBroken(Guarded(status_, [&] { return status_ = ExtractModelInput(records); }));
}

KXStatus MABaseModel::ExtractModelInput(MultiPassRecordIter& records)
{
    const KXStatus started = StartPass(records);
    if (started.IsError())
        return started;
    MAAnalysisState& state = State();
    state.settings.alpha = AlphaOf(settings_->GetCILevel());
    if (settings_->GetInputESType() == MAConst::INPUT_READY_MADE) {
        state.settings.tables.measure = settings_->GetBinaryEstType();
        state.settings.tables.outcome = settings_->GetOutcomeMeasure();
        return Take(ReadReadyMadeStudies(records, *settings_, state.settings.alpha));
    }
    return Take(
        CompleteStudies(records, *settings_, {KXStatus(), std::move(state.studies), state.counts, {}}));
}

KXStatus MABaseModel::Take(MAReading reading)
{
    State().studies = std::move(reading.studies);
    State().groups.members.clear(); // which are positions among the studies
    State().counts = std::move(reading.counts);
    AddWarnings(reading.warnings);
    for (const MARecordWarning& warning : Results().counts.warnings)
        AddWarning(warning.code);
    return reading.status;
}

KXStatus MABaseModel::ForgetIfBroken(const KXStatus& result)
{
    if (!result.IsError() || !HasState())
        return result;
    MAAnalysisState& state = State();
    const bool isOutOfMemory = result.GetCode() == MAStatusCode::OUT_OF_MEMORY;
    if (isOutOfMemory)
        state.counts = MARecordCounts();
    if (isOutOfMemory || state.studies.Count() != state.studies.recordNumber.size()) {
        state.studies = MAStudies();
        state.groups.members.clear();
    }
    return result;
}

bool MABaseModel::HasRead() const
{
    return Results().counts.records != MARecordCounts::unread || Results().studies.Count() > 0;
}

bool MABaseModel::HasGroupValues() const
{
    return HasRead() && Results().studies.groupValue.size() == Results().studies.Count();
}

bool MABaseModel::HasCumulativeValues() const
{
    return !Results().studies.cumulativeValue.empty();
}

// Warnings

bool MABaseModel::AddNewWarning(const KXStatus& status, std::vector<KXStatus>& list)
{
    try {
        return AppendNewWarning(status, list);
    } catch (...) {
        return false; // without memory for it
    }
}

void MABaseModel::AddWarning(const KXStatus& warning)
{
    AppendNewWarning(warning, State().warnings);
}

void MABaseModel::AddWarningOf(int record, int code)
{
    State().counts.warnings.push_back({record, code});
    AddWarning(code);
}

void MABaseModel::AddWarnings(const std::vector<int>& codes)
{
    for (const int code : codes)
        AddWarning(code);
}

/// A test's or a plot's regression has warnings of its own. The host of the analysis learns those that say
/// that a figure is not what it is labelled.
void MABaseModel::AddWarningsOfFigures(const std::vector<KXStatus>& warnings)
{
    for (const KXStatus& warning : warnings) {
        if (std::find(std::begin(warningsOfFigures), std::end(warningsOfFigures), warning.GetCode()) !=
            std::end(warningsOfFigures))
            AddWarning(warning);
    }
}

void MABaseModel::WarnOfTau2(const MAPooledModel& model)
{
    if (model.tau2Results.isDoubtful)
        AddWarning(MAStatusCode::TAU2_DOUBTFUL);
}

void MABaseModel::CheckInputSettings()
{
    AddWarnings(WarningsOfRun(*settings_, Results().studies.Count()));
}

// Models

MAModelChoice MABaseModel::EffectsChoice() const
{
    const MACopiedSettings& copied = Results().settings;
    const MAModelChoice choice = EffectsModel(*settings_, copied.run, outcome_, copied.alpha);
    return outcome_ == MAConst::OUTCOME_MEASURED ? WithNaturalValues(choice, ScaleOf(copied.tables.outcome))
                                                 : choice;
}

MAModelChoice MABaseModel::TableChoice() const
{
    const MATableMeasure& tables = Results().settings.tables;
    MAModelChoice choice = EffectsChoice();
    const MACountPoolingChoice counts = {tables.correction, tables.pooledZeroCells,
                                         NullHypothesisAt(choice, KXMV::Missing()), choice.fixed.alpha};
    choice.poolsTables = true;
    choice.poolsRates = outcome_ == MAConst::OUTCOME_MEASURED;
    choice.tables = {counts, tables.measure};
    choice.rates = {counts, tables.outcome};
    return choice;
}

bool MABaseModel::PoolsTables() const
{
    const MACopiedSettings& copied = Results().settings;
    return outcome_ == MAConst::OUTCOME_MEASURED ? PoolsCounts(copied.run, copied.tables.outcome)
                                                 : PoolsCounts(copied.run, outcome_);
}

KXStatus MABaseModel::BuildModel(const std::vector<double>& effectSizes, const std::vector<double>& variances)
{
    return Guarded(status_, [&] {
        const MAModelChoice choice = HasCumulativeValues() ? ModelOfStep(EffectsChoice()) : EffectsChoice();
        const MAPooledStudies pooled = {PoolEffects({effectSizes, variances}, choice), 0, {}};
        return AppendBuilt(pooled, InverseVarianceWeights(variances, pooled.model));
    });
}

KXStatus MABaseModel::BuildOnlyTestModel(const std::vector<double>& effectSizes,
                                         const std::vector<double>& variances)
{
    return Guarded(status_, [&] {
        const MAPooledModel model = PoolEffects({effectSizes, variances}, EffectsChoice());
        status_ = model.status;
        if (!status_.IsError())
            AppendReported(model);
        return status_;
    });
}

KXStatus MABaseModel::AppendBuilt(const MAPooledStudies& pooled, std::vector<double> weights)
{
    status_ = pooled.model.status;
    if (status_.IsError())
        return status_;
    const std::size_t studyCount = weights.size();
    AppendRow(pooled);
    if (!HasCumulativeValues())
        AppendReported(pooled.model);
    if (studyCount == Results().studies.Count())
        AppendWeights(std::move(weights));
    if (!HasCumulativeValues() && Results().groups.values.size() == 1)
        State().lists.groupSizes.push_back(static_cast<int>(studyCount));
    return status_;
}

void MABaseModel::AppendRow(const MAPooledStudies& pooled)
{
    State().lists.rows.push_back(RowOf(pooled));
}

void MABaseModel::AppendWeights(std::vector<double> weights)
{
    std::vector<double>& list = State().lists.weights;
    if (list.empty())
        list = std::move(weights);
    else
        list.insert(list.end(), weights.begin(), weights.end());
}

void MABaseModel::AppendReported(const MAPooledModel& model)
{
    AppendHeterogeneity(model);
    WarnOfTau2(model);
}

void MABaseModel::AppendHeterogeneity(const MAPooledModel& model)
{
    MAModelLists& lists = State().lists;
    lists.tau2.reserve(lists.tau2.size() + 1); // so that both lists grow, or neither
    lists.heterogeneity.push_back(model);
    lists.tau2.push_back(model.tau2);
}

KXStatus MABaseModel::TakeHeterogeneity(const MAPooledModel& model)
{
    return Guarded(status_, [&] {
        AppendHeterogeneity(model);
        return status_;
    });
}

MAContinousFixEffectModel MABaseModel::NewContFixEffectModel(const std::vector<double>& effectSizes,
                                                             const std::vector<double>& variances) const
{
    const MAFixedEffectChoice choice = ChoiceFor({effectSizes, variances}, EffectsChoice()).fixed;
    MAContinousFixEffectModel model;
    model.SetEffectSizes(&effectSizes);
    model.SetVariances(&variances);
    model.SetNullHypothesis(choice.nullHypothesis);
    model.SetSignLevel(choice.alpha);
    return model;
}

MARandomEffectModel MABaseModel::NewRandomEffectModel(const std::vector<double>& effectSizes,
                                                      const std::vector<double>& variances) const
{
    const MARandomEffectsChoice choice = ChoiceFor({effectSizes, variances}, EffectsChoice()).random;
    MARandomEffectModel model;
    model.SetEffectSizes(&effectSizes);
    model.SetVariances(&variances);
    model.SetEstimationType(choice.estimator);
    model.SetKHAdjType(choice.knappHartung);
    model.SetSignLevel(choice.alpha);
    model.SetMaxIter(choice.limits.maxIter);
    model.SetMaxStepHalving(choice.limits.maxStepHalving);
    model.SetConverTol(choice.limits.tolerance);
    model.SetTau2Search(choice.search);
    model.SetTau2Interval(choice.tau2Interval);
    model.SetPrediction(choice.prediction);
    if (choice.isThresholdAbove)
        model.SetProbabilityAbove(choice.threshold);
    else
        model.SetProbabilityBelow(choice.threshold);
    return model;
}

void MABaseModel::GetContFixModelTestOutput(const MAContinousFixEffectModel& model)
{
    TakeHeterogeneity(model.GetPooledModel());
}

void MABaseModel::GetRandomModelTestOutput(const MARandomEffectModel& model)
{
    TakeHeterogeneity(model.GetPooledModel());
}

void MABaseModel::ResetEstESStat(bool alsoTau2)
{
    if (!HasState())
        return;
    State().lists.rows.clear();
    if (alsoTau2)
        State().lists.tau2.clear();
}

/// One model of all studies, one per subgroup, or one after each study of a cumulative analysis.
KXStatus MABaseModel::BuildModels(const MAModelChoice& choice)
{
    if (HasCumulativeValues())
        return BuildCumulative(choice);
    if (Results().groups.AreSeveral())
        return BuildSubgroups(choice);
    BuildOverall(choice);
    State().lists.recordNumbers.push_back(Results().studies.recordNumber);
    return status_;
}

KXStatus MABaseModel::BuildOverall(const MAModelChoice& choice)
{
    const MAStudies& studies = Results().studies;
    const MAPooledStudies pooled = Pool(studies, choice);
    status_ = pooled.model.status;
    if (status_.IsError())
        return status_;
    AppendRow(pooled);
    AppendReported(pooled.model);
    AppendWeights(PoolingWeights(studies, pooled));
    State().lists.groupSizes.push_back(static_cast<int>(studies.Count()));
    return status_;
}

} // namespace MA_NAMESPACE
