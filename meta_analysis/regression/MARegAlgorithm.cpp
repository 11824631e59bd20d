#include "meta_analysis/regression/MARegAlgorithm.h"

#include "meta_analysis/platform/common/KXDisplay_940.h"
#include "meta_analysis/regression/MAPredictEffects.h"
#include "meta_analysis/regression/MARegBuild.h"
#include "meta_analysis/regression/MARegPlotRows.h"
#include "meta_analysis/regression/MARegWholeModel.h"
#include "meta_analysis/settings/MASettingsWarnings.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/MAWarnings.h"
#include "meta_analysis/settings/Memory.h"

#include <utility>

namespace MA_NAMESPACE {

namespace {

std::vector<MAEffectInfo> EffectInfoOf(const MADesignMatrix& design)
{
    std::vector<MAEffectInfo> info;
    for (const MADesignMatrixEffect& effect : design.GetEffects())
        info.push_back(
            {static_cast<int>(info.size()), effect.GetStart(), effect.GetSize(), effect.GetCombinations()});
    return info;
}

void AppendParameters(const KXModelEffect& effect, const MAEffectInfo& info, MARegrParameters& parameters)
{
    KXRegrParameter parameter;
    parameter.SetupFromEffect(effect, info.effectNumber, 0);
    if (effect.GetNFactors() == 0)
        parameters.push_back(parameter);
    for (const std::vector<int>& combination : info.combinations) {
        parameter.SetCategories(combination);
        parameters.push_back(parameter);
    }
}

MARegrParameters ParametersOf(const MADesignMatrix& design, const std::vector<MAEffectInfo>& info)
{
    MARegrParameters parameters(design.HasIntercept() ? 1 : 0);
    const std::vector<KXModelEffect>& effects = design.GetSettings().GetModelEffects();
    for (std::size_t i = 0; i < effects.size(); ++i)
        AppendParameters(effects[i], info[i], parameters);
    return parameters;
}

} // namespace

struct MARegAlgorithm::State
{
    explicit State(const MARegSettings& given)
        : settings(given),
          settingsStatus(given.IsValid() ? KXStatus() : KXStatus(MAStatusCode::INPUT_NOT_GIVEN)),
          status(settingsStatus)
    {}

    MARegUse Use() const
    {
        if (usedByBubblePlot)
            return MARegUse::BubblePlot;
        return usedByRegBaseTest ? MARegUse::SmallStudyTest : MARegUse::Model;
    }

    bool Passed(const KXStatus& passed) { return RecordStatus(passed, status, warnings); }

    /// Discards the fitted model and its results, and keeps the parameters.
    void ForgetModel() noexcept
    {
        fit.reset();
        results = unfitted;
    }

    KXStatus CreateParameters(MultiPassRecordIter& records);
    KXStatus PrepareRows(MultiPassRecordIter& records);
    KXStatus Build(MultiPassRecordIter& records, bool isRandom, MARegBuild (*fitModel)(const MARegTask&));
    KXStatus PredictRecord(const Record& record, MARegPrediction& predicted) const;

    const MARegSettings& settings; ///< the host's
    const KXStatus settingsStatus; ///< an error when they could not be used at construction
    KXStatus status;
    std::unique_ptr<MADesignMatrix> design;
    std::vector<MAEffectInfo> effectInfo;
    bool parametersUsed = false; ///< by a build
    int predictorCount = 0;
    bool usedByRegBaseTest = false;
    bool usedByBubblePlot = false;
    std::vector<KXStatus> warnings;

    std::shared_ptr<const MARegResults> unfitted; ///< with the parameters alone; null until they are created
    std::shared_ptr<const MARegResults> results;
    std::unique_ptr<MARegFit> fit; ///< null until a model is built
    MAPredictionChoice prediction = {};
};

KXStatus MARegAlgorithm::State::CreateParameters(MultiPassRecordIter& records)
{
    if (status.IsError())
        return status;
    if (!records.Start())
        return KXStatus(MAStatusCode::ITERATOR_NOT_STARTED);
    unfitted.reset();
    ForgetModel();
    warnings.clear();
    effectInfo.clear();
    parametersUsed = false;
    design = std::make_unique<MADesignMatrix>(settings);
    if (!design->HasKnownEffects())
        return KXStatus(MAStatusCode::INPUT_NOT_GIVEN);
    const KXStatus firstPass = design->ReadFirstPass(records);
    if (firstPass.IsError())
        return firstPass;
    AppendNewWarning(firstPass, warnings);
    if (!design->HasReferenceLevels())
        return KXStatus(MAStatusCode::REFERENCE_LEVEL_ABSENT);

    effectInfo = EffectInfoOf(*design);
    auto created = std::make_shared<MARegResults>();
    created->parameters = std::make_shared<const MARegrParameters>(ParametersOf(*design, effectInfo));
    results = unfitted = std::move(created);
    return KXStatus();
}

KXStatus MARegAlgorithm::State::PrepareRows(MultiPassRecordIter& records)
{
    status = settingsStatus; // an error of an earlier build does not stand in the way
    ForgetModel();
    if (status.IsError())
        return status;
    if (!records.Start())
        return KXStatus(MAStatusCode::ITERATOR_NOT_STARTED);
    if (unfitted == nullptr || parametersUsed) {
        const KXStatus created = CreateParameters(records);
        if (created.IsError())
            return created;
    }
    parametersUsed = true;
    design->AttachIterator(records);
    const KXStatus cached = design->CacheRows();
    if (!cached.IsError() && design->Rows().Count() == 0 && design->GetTotalRecords() > 0)
        return KXStatus(MAStatusCode::NO_USABLE_STUDY);
    return cached;
}

KXStatus MARegAlgorithm::State::Build(MultiPassRecordIter& records, bool isRandom,
                                      MARegBuild (*fitModel)(const MARegTask&))
{
    if (!Passed(PrepareRows(records)))
        return status;
    for (const int code : WarningsOfRegression(settings, isRandom))
        Passed(KXStatus(code, true));
    const MARegTask task = {*design, Use()};
    MARegBuild build = fitModel(task);
    prediction = {build.scale, build.criticalValue, isRandom ? build.results.tau2 : KXMV::Missing()};
    if (task.use == MARegUse::Model && !build.status.IsError())
        CompleteModel(task, fitModel, isRandom, prediction, build);
    for (const KXStatus& warning : build.warnings)
        Passed(warning);
    if (!Passed(build.status))
        return status;
    build.results.parameters = unfitted->parameters;
    results = std::make_shared<const MARegResults>(std::move(build.results));
    fit = std::move(build.fit);
    return status;
}

KXStatus MARegAlgorithm::State::PredictRecord(const Record& record, MARegPrediction& predicted) const
{
    const KXStatus unusable(MAStatusCode::UNUSABLE_RECORD, true);
    if (fit == nullptr)
        return unusable;
    MADesignRow row;
    if (!design->GetRow(record, row, true).IsOK() || row.isBad)
        return unusable;
    const bool hasStudy = design->CheckRecord(record, false).IsOK() && row.HasStudy();
    predicted = Predict(*fit, prediction.scale, prediction.criticalValue, row, hasStudy);
    return KXStatus();
}

MARegAlgorithm::MARegAlgorithm(const MARegSettings& settings) : state_(std::make_unique<State>(settings)) {}
MARegAlgorithm::~MARegAlgorithm() = default;

const MARegSettings& MARegAlgorithm::GetSettings() const
{
    return state_->settings;
}

KXStatus MARegAlgorithm::CreateParameters(MultiPassRecordIter& records)
{
    return Guarded(state_->status, [&] {
        state_->status = state_->settingsStatus;
        state_->Passed(state_->CreateParameters(records));
        return state_->status;
    });
}

std::vector<KXRegrParameter> MARegAlgorithm::GetParameters() const
{
    return AreParamsCreated() ? CopyOf(*state_->unfitted->parameters) : MARegrParameters();
}

bool MARegAlgorithm::AreParamsCreated() const
{
    return state_->unfitted != nullptr;
}

KXFactorCounts MARegAlgorithm::GetFactorCounts() const
{
    return state_->design == nullptr ? KXFactorCounts() : CopyOf(state_->design->GetFactorCounts());
}

KXStatus MARegAlgorithm::Build(MultiPassRecordIter& records, bool isRandom,
                               MARegBuild (*fit)(const MARegTask&))
{
    const KXStatus built = Guarded(state_->status, [&] { return state_->Build(records, isRandom, fit); });
    if (built.IsError())
        state_->ForgetModel();
    return built;
}

bool MARegAlgorithm::IsModelBuilt() const
{
    return state_->fit != nullptr;
}

KXStatus MARegAlgorithm::GetStatus() const
{
    return state_->status;
}

std::vector<MAEffectInfo> MARegAlgorithm::GetEffectInfo() const
{
    return CopyOf(state_->effectInfo);
}

KXStatus MARegAlgorithm::Score(const Record& record, double& fit, double& stdError, double& lower,
                               double& upper, double& residual, double& residualStdError,
                               double& leverage) const
{
    MARegPrediction prediction;
    KXStatus result;
    Guarded(result, [&] { return result = state_->PredictRecord(record, prediction); });
    fit = prediction.fit;
    stdError = prediction.stdError;
    lower = prediction.ciLower;
    upper = prediction.ciUpper;
    residual = prediction.residual;
    residualStdError = prediction.residualStdError;
    leverage = prediction.leverage;
    return result;
}

KXStatus MARegAlgorithm::PredictEffect(const Record& values, MAPredictedEffect& predicted) const
{
    predicted = {};
    KXStatus result;
    return Guarded(result, [&] {
        if (state_->fit != nullptr)
            predicted = PredictEffectOf(*state_->fit, state_->prediction, values);
        return KXMV::IsMissing(predicted.effect) ? KXStatus(MAStatusCode::PREDICTION_UNAVAILABLE, true)
                                                 : KXStatus();
    });
}

KXStatus MARegAlgorithm::ForestPlot(MultiPassRecordIter& records, std::vector<MARegForestRow>& rows) const
{
    rows.clear();
    KXStatus result;
    return Guarded(result, [&] {
        return state_->fit == nullptr ? KXStatus()
                                      : PlotForest(*state_->fit, state_->prediction, records, rows);
    });
}

KXStatus MARegAlgorithm::BubblePlot(MultiPassRecordIter& records, int covariate, int points,
                                    MARegBubblePlot& plot) const
{
    plot = {};
    if ((state_->settings.GetVariableRoles(covariate) & KXRegSettings::ROLE_COVARIATE) == 0)
        return KXStatus(MAStatusCode::INPUT_NOT_GIVEN);
    KXStatus result;
    return Guarded(result, [&] {
        return state_->fit == nullptr
                   ? KXStatus()
                   : PlotBubbles(*state_->fit, state_->prediction, records, covariate, points, plot);
    });
}

void MARegAlgorithm::SetNumOfPredictors(int count)
{
    state_->predictorCount = count;
}

void MARegAlgorithm::Display() const
{
    KXDisplay_940::DisplayText("MAAlgorithm display start");
    KXDisplay_940::DisplayText("Effect info:");
    for (const MAEffectInfo& info : state_->effectInfo) {
        KXDisplay_940::DisplayText("Effect number");
        KXDisplay_940::DisplayI("index", info.effectNumber);
        KXDisplay_940::DisplayI("start", info.startColumn);
        KXDisplay_940::DisplayI("number of values", info.valueCount);
        KXDisplay_940::DisplayText("Combinations:");
        for (const std::vector<int>& combination : info.combinations)
            KXDisplay_940::DisplayIV("", combination);
    }
    KXDisplay_940::DisplayText("MAAlgorithm display end");
}

int MARegAlgorithm::GetNBadRecords() const
{
    return state_->results == nullptr ? 0 : state_->results->badRecords;
}

const std::vector<KXStatus>& MARegAlgorithm::GetWarnings() const
{
    return state_->warnings;
}

void MARegAlgorithm::setUsedByRegBaseTest(bool used)
{
    state_->usedByRegBaseTest = used;
}

void MARegAlgorithm::setUsedByBubbPlot(bool used)
{
    state_->usedByBubblePlot = used;
}

std::shared_ptr<const MARegResults> MARegAlgorithm::Results() const noexcept
{
    return state_->results;
}

} // namespace MA_NAMESPACE
