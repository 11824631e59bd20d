#include "meta_analysis/regression/MARegAlgorithm.h"

#include "meta_analysis/platform/common/KXDisplay_940.h"
#include "meta_analysis/regression/MARegFit.h"
#include "meta_analysis/regression/design/MADesignMatrix.h"
#include "meta_analysis/settings/MASettingsWarnings.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/MAWarnings.h"
#include "meta_analysis/settings/Memory.h"

namespace MA_NAMESPACE {

namespace {

KXStatus StatusOf(const MARegSettings& settings)
{
    return settings.IsValid() ? KXStatus() : KXStatus(MAStatusCode::INPUT_NOT_GIVEN);
}

} // namespace

MARegAlgorithm::MARegAlgorithm(const MARegSettings& settings)
    : settings_(&settings), settingsStatus_(StatusOf(settings)), status_(settingsStatus_)
{}

MARegAlgorithm::~MARegAlgorithm() = default;

const MARegSettings& MARegAlgorithm::GetSettings() const
{
    return *settings_;
}

std::vector<KXRegrParameter> MARegAlgorithm::GetParameters() const
{
    return CopyOf(parameters_);
}

bool MARegAlgorithm::AreParamsCreated() const
{
    return parametersCreated_;
}

KXFactorCounts MARegAlgorithm::GetFactorCounts() const
{
    KXFactorCounts none({}, {}, -1, -1);
    try {
        return design_ == nullptr ? none : design_->GetFactorCounts();
    } catch (const std::exception&) {
        return none;
    }
}

bool MARegAlgorithm::IsModelBuilt() const
{
    return modelBuilt_;
}

KXStatus MARegAlgorithm::GetStatus() const
{
    return status_;
}

std::vector<MAEffectInfo> MARegAlgorithm::GetEffectInfo() const
{
    return CopyOf(effectInfo_);
}

void MARegAlgorithm::SetNumOfPredictors(int count)
{
    predictorCount_ = count;
}

int MARegAlgorithm::GetNBadRecords() const
{
    return fit_ == nullptr ? 0 : fit_->BadRecordCount();
}

KXStatus MARegAlgorithm::CreateParameters(MultiPassRecordIter& records)
{
    return Guarded(status_, [&] {
        status_ = settingsStatus_;
        Passed(CreateParametersFrom(records));
        return status_;
    });
}

KXStatus MARegAlgorithm::CreateParametersFrom(MultiPassRecordIter& records)
{
    if (status_.IsError())
        return status_;
    if (!records.Start())
        return KXStatus(MAStatusCode::ITERATOR_NOT_STARTED);
    ForgetModel();
    warnings_.clear();
    parameters_.clear();
    effectInfo_.clear();
    parametersCreated_ = parametersUsed_ = false;
    design_ = std::make_unique<MADesignMatrix>(*settings_);
    if (!design_->HasKnownEffects())
        return KXStatus(MAStatusCode::INPUT_NOT_GIVEN);
    const KXStatus firstPass = design_->ReadFirstPass(records);
    if (firstPass.IsError())
        return firstPass;
    AppendNewWarning(firstPass, warnings_);

    SaveEffectInfo();
    if (design_->HasIntercept())
        parameters_.emplace_back();
    const std::vector<KXModelEffect>& effects = settings_->GetModelEffects();
    for (std::size_t i = 0; i < effects.size(); ++i)
        AppendParameters(effects[i], effectInfo_[i]);
    parametersCreated_ = true;
    return KXStatus();
}

void MARegAlgorithm::SaveEffectInfo()
{
    for (const MADesignMatrixEffect& effect : design_->GetEffects())
        effectInfo_.push_back({static_cast<int>(effectInfo_.size()), effect.GetStart(), effect.GetSize(),
                               effect.GetCombinations()});
}

void MARegAlgorithm::AppendParameters(const KXModelEffect& effect, const MAEffectInfo& info)
{
    KXRegrParameter parameter;
    parameter.SetupFromEffect(effect, info.effectNumber, 0);
    if (effect.GetNFactors() == 0)
        parameters_.push_back(parameter);
    for (const std::vector<int>& combination : info.combinations) {
        parameter.SetCategories(combination);
        parameters_.push_back(parameter);
    }
}

KXStatus MARegAlgorithm::PrepareRows(MultiPassRecordIter& records)
{
    status_ = settingsStatus_; // an error of an earlier build does not stand in the way
    ForgetModel();
    if (status_.IsError())
        return status_;
    if (!records.Start())
        return KXStatus(MAStatusCode::ITERATOR_NOT_STARTED);
    if (!parametersCreated_ || parametersUsed_) {
        const KXStatus created = CreateParametersFrom(records);
        if (created.IsError())
            return created;
    }
    parametersUsed_ = true;
    design_->AttachIterator(records);
    const KXStatus cached = design_->CacheRows();
    if (!cached.IsError() && design_->Rows().Count() == 0 && design_->GetTotalRecords() > 0)
        return KXStatus(MAStatusCode::NO_USABLE_STUDY);
    return cached;
}

void MARegAlgorithm::WarnOfSettings(bool isRandom)
{
    for (const int code : WarningsOfRegression(*settings_, isRandom))
        Passed(KXStatus(code, true));
}

void MARegAlgorithm::ForgetModel()
{
    modelBuilt_ = false;
    fit_.reset();
    waldTest_.reset();
    fTest_.reset();
    residualQ_ = residualH2_ = residualI2_ = KXMV::Missing();
    residualQPValue_ = MAPValue();
    residualDf_ = 0;
    tau2_ = rSquare_ = 0.0;
    tau2Results_ = MATau2Results();
}

bool MARegAlgorithm::Passed(const KXStatus& status)
{
    AppendNewWarning(status, warnings_);
    if (status.IsError())
        status_ = status;
    return !status.IsError();
}

void MARegAlgorithm::TestModel(bool asF)
{
    (asF ? fTest_ : waldTest_) = std::make_unique<MAModelTest>(fit_->TestModel(asF));
}

void MARegAlgorithm::FinishBuild(bool scoresUseStudentT)
{
    scoreCriticalValue_ = fit_->CriticalValue(scoresUseStudentT);
    modelBuilt_ = true;
}

KXStatus MARegAlgorithm::ScoreRecord(const Record& record, double& fit, double& stdError, double& lower,
                                     double& upper, double& residual, double& residualStdError,
                                     double& leverage) const
{
    MAPrediction prediction;
    KXStatus result;
    Guarded(result, [&] { return result = Predict(record, prediction); });
    fit = prediction.fit;
    stdError = prediction.stdError;
    lower = prediction.ciLower;
    upper = prediction.ciUpper;
    residual = prediction.residual;
    residualStdError = prediction.residualStdError;
    leverage = prediction.leverage;
    return result;
}

KXStatus MARegAlgorithm::Predict(const Record& record, MAPrediction& prediction) const
{
    const KXStatus unusable(MAStatusCode::UNUSABLE_RECORD, true);
    if (!modelBuilt_)
        return unusable;
    MADesignRow row;
    if (!design_->GetRow(record, row, true).IsOK() || row.isBad)
        return unusable;
    const bool hasStudy = design_->CheckRecord(record, false).IsOK() && row.HasStudy();
    prediction = fit_->Predict(row, hasStudy, scoreCriticalValue_);
    return KXStatus();
}

void MARegAlgorithm::Display() const
{
    KXDisplay_940::DisplayText("MAAlgorithm display start");
    KXDisplay_940::DisplayText("Effect info:");
    for (const MAEffectInfo& info : effectInfo_) {
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

} // namespace MA_NAMESPACE
