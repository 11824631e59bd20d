#include "meta_analysis/analysis/MABaseModel.h"

#include "meta_analysis/analysis/models/MAModelBuilder.h"
#include "meta_analysis/analysis/models/MAModelRows.h"
#include "meta_analysis/settings/Guarded.h"
#include "meta_analysis/settings/MASettingsWarnings.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/MAWarnings.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace MA_NAMESPACE {

namespace {

double Tau2Of(const MAContinousFixEffectModel& /*model*/)
{
    return 0.0;
}

double Tau2Of(const MARandomEffectModel& model)
{
    return model.GetBetweenStudyVariance();
}

} // namespace

MABaseModel::MABaseModel(const MAModelSettings& settings) : MAAnalysisResults(settings) {}
MABaseModel::MABaseModel(const MABaseModel&) = default;
MABaseModel& MABaseModel::operator=(const MABaseModel&) = default;
MABaseModel::~MABaseModel() = default;

KXStatus MABaseModel::ESCalc(MultiPassRecordIter& /*records*/)
{
    return KXStatus();
}

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
    AppendNewWarning(warning, warnings_);
}

void MABaseModel::AddWarnings(const std::vector<int>& codes)
{
    for (const int code : codes)
        AddWarning(code);
}

void MABaseModel::CopyRunSettings()
{
    modelType_ = settings_->GetModelType();
    tau2Estimator_ = settings_->GetEstTauType();
    knappHartung_ = settings_->GetKnapHartAdjustType();
    weightType_ = settings_->GetWeightType();
    inputType_ = settings_->GetInputESType();
}

KXStatus MABaseModel::ReadStudies(MultiPassRecordIter& records)
{
    const KXStatus computed = inputType_ == MAConst::INPUT_RAW ? ESCalc(records) : KXStatus();
    return computed.IsError() ? status_ = computed : ExtractModelInputData(records);
}

void MABaseModel::CheckInputSettings()
{
    AddWarnings(WarningsOfRun(*settings_, studies_.Count()));
}

void MABaseModel::PrepareGroups()
{
    groupValues_ = GetUniqGroupElem();
    groupCount_ = static_cast<int>(groupValues_.size());
    trimFillRunning_ = false;
}

std::vector<double> MABaseModel::GetUniqGroupElem() const
{
    const std::set<double> distinct(studies_.groupValue.begin(), studies_.groupValue.end());
    return {distinct.begin(), distinct.end()};
}

/// One model of all studies, one per subgroup, or one after each study of a cumulative analysis.
void MABaseModel::BuildModels(MAModelBuilder& builder)
{
    if (HasCumulativeValues()) {
        BuildCumulative(builder);
    } else if (HasGroups()) {
        BuildSubGroups(builder);
    } else {
        builder.BuildAll();
        modelRecords_.push_back(studies_.recordNumber);
    }
}

void MABaseModel::RunTrimFill()
{
    trimFillRunning_ = settings_->GetIsTRIMFILL();
    if (trimFillRunning_)
        TrimFill();
}

/// The imputed studies are the last row of the funnel plot, without a contour of their own.
void MABaseModel::AppendImputedToFunnel()
{
    funnel_.x.push_back(imputed_.effectSize);
    CalcFunnelPlotY(imputed_.variance, true);
}

MAContinousFixEffectModel MABaseModel::NewContFixEffectModel(const std::vector<double>& effectSizes,
                                                             const std::vector<double>& variances) const
{
    MAContinousFixEffectModel model;
    model.SetEffectSizes(&effectSizes);
    model.SetVariances(&variances);
    model.SetNullHypothesis(settings_->GetNullHypothesis());
    model.SetSignLevel(alpha_);
    return model;
}

MARandomEffectModel MABaseModel::NewRandomEffectModel(const std::vector<double>& effectSizes,
                                                      const std::vector<double>& variances) const
{
    MARandomEffectModel model;
    model.SetEffectSizes(&effectSizes);
    model.SetVariances(&variances);
    model.SetEstimationType(tau2Estimator_);
    model.SetKHAdjType(knappHartung_);
    model.SetSignLevel(alpha_);
    model.SetMaxIter(settings_->GetMaxIter());
    model.SetMaxStepHalving(settings_->GetMaxStepHalving());
    model.SetConverTol(settings_->GetConnvergenceTol());
    model.SetTau2Search(settings_->GetTau2Search());
    model.SetTau2Interval(settings_->GetTau2Interval());
    model.SetPrediction(settings_->GetPrediction());
    SetThreshold(model);
    return model;
}

/// The model of a step of a cumulative analysis or of trimming, whose interval of tau² is not reported.
MARandomEffectModel MABaseModel::NewStepModel(const std::vector<double>& effectSizes,
                                              const std::vector<double>& variances) const
{
    MARandomEffectModel model = NewRandomEffectModel(effectSizes, variances);
    model.SetTau2Interval(MAConst::TAU2_INTERVAL_NONE);
    return model;
}

/// A threshold of ratios is given on the natural scale; every ratio is above one that is not positive.
void MABaseModel::SetThreshold(MARandomEffectModel& model) const
{
    const auto onAnalysisScale = [this](double value) {
        return IsOnLogScale() && !KXMV::IsMissing(value) ? std::log(std::max(value, 0.0)) : value;
    };
    if (!KXMV::IsMissing(settings_->GetProbabilityAbove()))
        model.SetProbabilityAbove(onAnalysisScale(settings_->GetProbabilityAbove()));
    else
        model.SetProbabilityBelow(onAnalysisScale(settings_->GetProbabilityBelow()));
}

KXStatus MABaseModel::BuildModel(const std::vector<double>& effectSizes, const std::vector<double>& variances)
{
    return Guarded(status_, [&] {
        return modelType_ == MAConst::MODEL_FIXED
                   ? Build(NewContFixEffectModel(effectSizes, variances), variances)
                   : Build(RecordsTestOutput() ? NewRandomEffectModel(effectSizes, variances)
                                               : NewStepModel(effectSizes, variances),
                           variances);
    });
}

KXStatus MABaseModel::BuildOnlyTestModel(const std::vector<double>& effectSizes,
                                         const std::vector<double>& variances)
{
    return Guarded(status_, [&] {
        return modelType_ == MAConst::MODEL_FIXED ? BuildTest(NewContFixEffectModel(effectSizes, variances))
                                                  : BuildTest(NewRandomEffectModel(effectSizes, variances));
    });
}

template <class Model>
KXStatus MABaseModel::Build(Model model, const std::vector<double>& variances)
{
    status_ = model.EstimateMeanESStats();
    if (status_.IsError())
        return status_;
    results_.models.push_back(RowOf(model));
    if (RecordsTestOutput())
        RecordTestOutput(model);
    RecordInverseVarianceWeights(variances, Tau2Of(model));
    if (RecordsGroupSize())
        groupSizes_.push_back(static_cast<int>(variances.size()));
    return status_;
}

void MABaseModel::RecordInverseVarianceWeights(const std::vector<double>& variances, double tau2)
{
    if (!RecordsWeights(variances.size()))
        return;
    weights_.reserve(weights_.size() + variances.size());
    for (const double variance : variances)
        weights_.push_back(1.0 / (tau2 + variance));
}

template <class Model>
KXStatus MABaseModel::BuildTest(Model model)
{
    status_ = model.EstimateMeanESStats();
    if (!status_.IsError())
        RecordTestOutput(model);
    return status_;
}

/// Scoring, the default, can miss the estimate that a reported model is labelled with.
void MABaseModel::WarnOfDoubtfulTau2(const MARandomEffectModel& model)
{
    if (model.HasDoubtfulTau2())
        AddWarning(MAStatusCode::TAU2_DOUBTFUL);
}

void MABaseModel::RecordTestOutput(const MARandomEffectModel& model)
{
    GetRandomModelTestOutput(model);
    WarnOfDoubtfulTau2(model);
}

void MABaseModel::GetContFixModelTestOutput(const MAContinousFixEffectModel& model)
{
    AppendTestOutput(HeterogeneityRowOf(model), KXMV::Missing());
}

void MABaseModel::GetRandomModelTestOutput(const MARandomEffectModel& model)
{
    AppendTestOutput(HeterogeneityRowOf(model), model.GetBetweenStudyVariance());
}

void MABaseModel::AppendTestOutput(const MAHeterogeneityRow& row, double tau2)
{
    Guarded(status_, [&] {
        results_.tau2.reserve(results_.tau2.size() + 1); // so that both lists grow, or neither
        heterogeneity_.push_back(row);
        results_.tau2.push_back(tau2);
        return status_;
    });
}

} // namespace MA_NAMESPACE
