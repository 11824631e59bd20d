#include "meta_analysis/analysis/MAAnalysisResults.h"

#include "meta_analysis/analysis/MAAnalysisState.h"
#include "meta_analysis/analysis/MAResultColumns.h"
#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/settings/Memory.h"

#include <cmath>
#include <numeric>

namespace MA_NAMESPACE {

namespace {

/// Degrees of freedom of a homogeneity test that was made; a model of one study makes none.
double HomogeneityDf(const MAPooledModel& model)
{
    return KXMV::IsMissing(model.homogeneity.q) ? KXMV::Missing() : model.homogeneity.df;
}

/// Fixed-effect models have no between-study variance, and nothing to say of its estimation.
double IfRandom(const MAPooledModel& model, double value)
{
    return KXMV::IsMissing(model.tau2) ? KXMV::Missing() : value;
}

} // namespace

MAAnalysisResults::MAAnalysisResults(const MAModelSettings& settings, MAConst::OUTCOMETYPE outcome)
    : settings_(&settings), outcome_(outcome)
{}

MAAnalysisResults::MAAnalysisResults(const MAAnalysisResults& other)
    : settings_(other.settings_),
      outcome_(other.outcome_),
      status_(other.status_),
      state_(other.state_ == nullptr ? nullptr : std::make_unique<MAAnalysisState>(*other.state_))
{}

MAAnalysisResults& MAAnalysisResults::operator=(const MAAnalysisResults& other)
{
    if (this == &other)
        return *this;
    auto copied = other.state_ == nullptr ? nullptr : std::make_unique<MAAnalysisState>(*other.state_);
    settings_ = other.settings_;
    outcome_ = other.outcome_;
    status_ = other.status_;
    state_ = std::move(copied);
    return *this;
}

MAAnalysisResults::~MAAnalysisResults() = default;

MAAnalysisState& MAAnalysisResults::State()
{
    if (state_ == nullptr)
        state_ = std::make_unique<MAAnalysisState>();
    return *state_;
}

const MAAnalysisState& MAAnalysisResults::Results() const noexcept
{
    static const MAAnalysisState none;
    return state_ == nullptr ? none : *state_;
}

void MAAnalysisResults::Restart()
{
    state_.reset();
    status_ = KXStatus();
}

MAConst::MODELTYPE MAAnalysisResults::GetModelType() const
{
    return Results().settings.run.modelType;
}

MAConst::WEIGHTYPE MAAnalysisResults::GetWeightType() const
{
    return Results().settings.run.weightType;
}

MAConst::INPUTESTYPE MAAnalysisResults::GetInputESType() const
{
    return Results().settings.run.inputType;
}

const std::vector<KXStatus>& MAAnalysisResults::GetWarnings() const
{
    return Results().warnings;
}

std::vector<int> MAAnalysisResults::GetEffectConversion() const
{
    return FieldOf(Results().studies.effectConversions, [](MAConst::CONVERSION from) { return int{from}; });
}

std::vector<int> MAAnalysisResults::GetTreatmentConversion() const
{
    return FieldOf(Results().studies.groupConversions,
                   [](const MAGroupConversions& from) { return int{from.treatment}; });
}

std::vector<int> MAAnalysisResults::GetControlConversion() const
{
    return FieldOf(Results().studies.groupConversions,
                   [](const MAGroupConversions& from) { return int{from.control}; });
}

std::vector<double> MAAnalysisResults::GetEffectSize() const
{
    return CopyOf(Results().studies.effectSize);
}

std::vector<double> MAAnalysisResults::GetVariance() const
{
    return CopyOf(Results().studies.variance);
}

std::vector<double> MAAnalysisResults::GetStdError() const
{
    return FieldOf(Results().studies.tests, &MAStudyTest::stdError);
}

std::vector<double> MAAnalysisResults::GetZVal() const
{
    return FieldOf(Results().studies.tests, &MAStudyTest::zValue);
}

std::vector<double> MAAnalysisResults::GetSig() const
{
    return FieldOf(Results().studies.tests, &MAStudyTest::pValue);
}

std::vector<double> MAAnalysisResults::GetLog10Sig() const
{
    return FieldOf(Results().studies.tests,
                   [](const MAStudyTest& test) { return TwoSidedNormalPValue(test.zValue).Log10(); });
}

std::vector<double> MAAnalysisResults::GetCILower() const
{
    return FieldOf(Results().studies.tests, &MAStudyTest::ciLower);
}

std::vector<double> MAAnalysisResults::GetCIUpper() const
{
    return FieldOf(Results().studies.tests, &MAStudyTest::ciUpper);
}

std::vector<double> MAAnalysisResults::GetSampSize() const
{
    return CopyOf(Results().studies.sampleSize);
}

std::vector<double> MAAnalysisResults::GetWeight() const
{
    return CopyOf(Results().lists.weights);
}

std::vector<double> MAAnalysisResults::GetNormalizedWeight() const
{
    std::vector<double> normalized = CopyOf(Results().lists.weights);
    const double sum = std::accumulate(normalized.begin(), normalized.end(), 0.0);
    for (double& weight : normalized)
        weight /= sum;
    return normalized;
}

std::vector<int> MAAnalysisResults::GetNonMissingStudyID() const
{
    return CopyOf(Results().studies.recordNumber);
}

std::vector<double> MAAnalysisResults::GetEstEffectSize() const
{
    return FieldOf(Results().lists.rows, Nested(&MAPooledRow::effect, &MAEstimate::estimate));
}

std::vector<double> MAAnalysisResults::GetEstStdError() const
{
    return FieldOf(Results().lists.rows, Nested(&MAPooledRow::effect, &MAEstimate::stdError));
}

std::vector<double> MAAnalysisResults::GetEstZVal() const
{
    return FieldOf(Results().lists.rows, Nested(&MAPooledRow::effect, &MAEstimate::statistic));
}

std::vector<double> MAAnalysisResults::GetEstSig() const
{
    return PValuesOf(Results().lists.rows, &MAPooledRow::effect, &MAPValue::value);
}

std::vector<double> MAAnalysisResults::GetEstLog10Sig() const
{
    return PValuesOf(Results().lists.rows, &MAPooledRow::effect, &MAPValue::Log10);
}

std::vector<double> MAAnalysisResults::GetEstDf() const
{
    return FieldOf(Results().lists.heterogeneity, [](const MAPooledModel& model) {
        return std::isfinite(model.testDf) ? model.testDf : KXMV::Missing();
    });
}

std::vector<double> MAAnalysisResults::GetEstCILower() const
{
    return FieldOf(Results().lists.rows, Nested(&MAPooledRow::effect, &MAEstimate::ciLower));
}

std::vector<double> MAAnalysisResults::GetEstCIUpper() const
{
    return FieldOf(Results().lists.rows, Nested(&MAPooledRow::effect, &MAEstimate::ciUpper));
}

std::vector<double> MAAnalysisResults::GetPILower() const
{
    return FieldOf(Results().lists.heterogeneity, Nested(&MAPooledModel::prediction, &MAPrediction::lower));
}

std::vector<double> MAAnalysisResults::GetPIUpper() const
{
    return FieldOf(Results().lists.heterogeneity, Nested(&MAPooledModel::prediction, &MAPrediction::upper));
}

std::vector<double> MAAnalysisResults::GetTau2Var() const
{
    return CopyOf(Results().lists.tau2);
}

std::vector<double> MAAnalysisResults::GetPIProbability() const
{
    return FieldOf(Results().lists.heterogeneity,
                   Nested(&MAPooledModel::prediction, &MAPrediction::probability));
}

std::vector<double> MAAnalysisResults::GetTau2CILower() const
{
    return FieldOf(Results().lists.heterogeneity, Nested(&MAPooledModel::tau2Results, &MATau2Results::lower));
}

std::vector<double> MAAnalysisResults::GetTau2CIUpper() const
{
    return FieldOf(Results().lists.heterogeneity, Nested(&MAPooledModel::tau2Results, &MATau2Results::upper));
}

std::vector<double> MAAnalysisResults::GetTau2Convergence() const
{
    return FieldOf(Results().lists.heterogeneity,
                   [](const MAPooledModel& model) { return IfRandom(model, model.tau2Results.convergence); });
}

std::vector<double> MAAnalysisResults::GetTau2Evaluations() const
{
    return FieldOf(Results().lists.heterogeneity,
                   [](const MAPooledModel& model) { return IfRandom(model, model.tau2Results.evaluations); });
}

std::vector<double> MAAnalysisResults::GetLogLikelihood() const
{
    return FieldOf(Results().lists.heterogeneity,
                   [](const MAPooledModel& model) { return model.tau2Results.information.logLikelihood; });
}

std::vector<double> MAAnalysisResults::GetAIC() const
{
    return FieldOf(Results().lists.heterogeneity,
                   [](const MAPooledModel& model) { return model.tau2Results.information.aic; });
}

std::vector<double> MAAnalysisResults::GetBIC() const
{
    return FieldOf(Results().lists.heterogeneity,
                   [](const MAPooledModel& model) { return model.tau2Results.information.bic; });
}

std::vector<double> MAAnalysisResults::GetAICc() const
{
    return FieldOf(Results().lists.heterogeneity,
                   [](const MAPooledModel& model) { return model.tau2Results.information.aicc; });
}

std::vector<double> MAAnalysisResults::GetHomoTestChisquareQ() const
{
    return FieldOf(Results().lists.heterogeneity, Nested(&MAPooledModel::homogeneity, &MAHomogeneityTest::q));
}

std::vector<double> MAAnalysisResults::GetHomoTestdf() const
{
    return FieldOf(Results().lists.heterogeneity, HomogeneityDf);
}

std::vector<double> MAAnalysisResults::GetHomoTestSig() const
{
    return PValuesOf(Results().lists.heterogeneity, &MAPooledModel::homogeneity, &MAPValue::value);
}

std::vector<double> MAAnalysisResults::GetHomoTestLog10Sig() const
{
    return PValuesOf(Results().lists.heterogeneity, &MAPooledModel::homogeneity, &MAPValue::Log10);
}

std::vector<double> MAAnalysisResults::GetH2Index() const
{
    return FieldOf(Results().lists.heterogeneity,
                   Nested(&MAPooledModel::heterogeneity, &MAHeterogeneityMeasures::h2));
}

std::vector<double> MAAnalysisResults::GetH2CILower() const
{
    return FieldOf(Results().lists.heterogeneity,
                   Nested(&MAPooledModel::heterogeneity, &MAHeterogeneityMeasures::h2Lower));
}

std::vector<double> MAAnalysisResults::GetH2CIUpper() const
{
    return FieldOf(Results().lists.heterogeneity,
                   Nested(&MAPooledModel::heterogeneity, &MAHeterogeneityMeasures::h2Upper));
}

std::vector<double> MAAnalysisResults::GetI2Index() const
{
    return FieldOf(Results().lists.heterogeneity,
                   Nested(&MAPooledModel::heterogeneity, &MAHeterogeneityMeasures::i2));
}

std::vector<double> MAAnalysisResults::GetI2CILower() const
{
    return FieldOf(Results().lists.heterogeneity,
                   Nested(&MAPooledModel::heterogeneity, &MAHeterogeneityMeasures::i2Lower));
}

std::vector<double> MAAnalysisResults::GetI2CIUpper() const
{
    return FieldOf(Results().lists.heterogeneity,
                   Nested(&MAPooledModel::heterogeneity, &MAHeterogeneityMeasures::i2Upper));
}

} // namespace MA_NAMESPACE
