#include "meta_analysis/settings/MARegSettings.h"

#include "meta_analysis/platform/common/KXDisplay_940.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace MA_NAMESPACE {

static_assert(KXLogRegSettings::DEPENDENT_NOT_GIVEN == MAStatusCode::INPUT_NOT_GIVEN,
              "a host sees one code for a variable that is not given");

namespace {

bool AppendIfAbsent(int value, std::vector<int>& values)
{
    if (std::find(values.begin(), values.end(), value) != values.end())
        return false;
    values.push_back(value);
    return true;
}

void DisplayIfGiven(const char* label, int variableIndex)
{
    if (variableIndex >= 0)
        KXDisplay_940::DisplayI(label, variableIndex);
}

} // namespace

MARegSettings::MARegSettings() noexcept
{
    SetInterceptUse(false);
}

MARegSettings::~MARegSettings() = default;

KXStatus MARegSettings::IsValidSettings(bool dependentRequired) const
{
    const KXStatus status = KXLogRegSettings::IsValidSettings(dependentRequired);
    return status.IsError() || IsValid() ? status : KXStatus(MAStatusCode::INPUT_NOT_GIVEN);
}

bool MARegSettings::SetDependent(int index)
{
    if (!KXLogRegSettings::SetDependent(index))
        return false;
    dependentType_ = KXConst::DEPENDENT_SINGLE;
    return true;
}

bool MARegSettings::AddModelEffect(const KXModelEffect& effect)
{
    try {
        EffectVariables extended = EffectVariablesWith(effect);
        if (!KXLogRegSettings::AddModelEffect(effect))
            return false;
        effectVariables_ = std::move(extended);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

MARegSettings::EffectVariables MARegSettings::EffectVariablesWith(const KXModelEffect& effect) const
{
    EffectVariables extended = effectVariables_;
    for (const int factor : effect.GetFactors()) {
        if (AppendIfAbsent(factor, extended.factors))
            extended.factorSizes.push_back(GetFactorSize(factor));
    }
    for (const int covariate : effect.GetCovariates())
        AppendIfAbsent(covariate, extended.covariates);
    return extended;
}

bool MARegSettings::IsValid() const
{
    return IsValidModelEffects() && IsValidIterations() && IsValidTolerance();
}

bool MARegSettings::IsValidTolerance() const
{
    const double logLikelihood = GetLogLikelihoodTolerance();
    const double parameter = GetParameterTolerance();
    if (logLikelihood < 0.0 || parameter < 0.0)
        return false;
    return logLikelihood != 0.0 || parameter != 0.0;
}

bool MARegSettings::SetNSkippedReports(int value)
{
    if (value < 0)
        return false;
    nSkippedReports_ = value;
    return true;
}

bool MARegSettings::SetReferenceLevel(int factor, int level) noexcept
{
    for (auto& [known, reference] : referenceLevels_) {
        if (known != factor)
            continue;
        reference = level;
        return true;
    }
    try {
        referenceLevels_.emplace_back(factor, level);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

int MARegSettings::GetReferenceLevel(int factor) const noexcept
{
    for (const auto& [known, level] : referenceLevels_)
        if (known == factor)
            return level;
    return -1;
}

void MARegSettings::Display() const
{
    KXDisplay_940::DisplayText("MARegSettings display start");
    DisplayReporting();
    DisplayVariables();
    DisplayModel();
    DisplayComputation();
    KXDisplay_940::DisplayText("MARegSettings display end");
}

void MARegSettings::DisplayReporting() const
{
    KXDisplay_940::DisplayText(iterProgressListener_ != nullptr
                                   ? "Iteration progress listener for model building is defined"
                                   : "Iteration progress listener for model building is not defined");
    KXDisplay_940::DisplayText(recProgressListener_ != nullptr ? "Record progress listener is defined"
                                                               : "Record progress listener is not defined");
    KXDisplay_940::DisplayI("Number of progress reports to skip", nSkippedReports_);
    KXDisplay_940::DisplayText(GetCancelObject() != nullptr ? "Cancel object is defined"
                                                            : "Cancel object is not defined");
    KXDisplay_940::DisplayC("Temporary file directory: ", GetTempDirectory());
}

void MARegSettings::DisplayVariables() const
{
    KXDisplay_940::DisplayIV("Factors", GetFactors());
    KXDisplay_940::DisplayIV("Factors sizes", GetFactorSizes());
    KXDisplay_940::DisplayIV("Covariates", GetCovariates());
    KXDisplay_940::DisplayI("Dependent type", dependentType_);
    if (dependentType_ == KXConst::DEPENDENT_SINGLE)
        KXDisplay_940::DisplayI("Dependent index", GetDependent());
    KXDisplay_940::DisplayI("Dependent number of categories", GetDependentCategories());
    KXDisplay_940::DisplayI("Dependent reference category", GetDependentReference());
    DisplayIfGiven("Frequency weight index", GetFreqWeightVar());
    DisplayIfGiven("Omega weight index", GetRegrWeightVar());
    DisplayIfGiven("Cluster index", cluster_);
}

void MARegSettings::DisplayModel() const
{
    KXDisplay_940::DisplayB("Intercept in the model indicator", GetInterceptUse());
    KXDisplay_940::DisplayI("Number of model effects: ", GetNumOfModelEffects());
    for (const KXModelEffect& effect : GetModelEffects())
        effect.Display();
}

void MARegSettings::DisplayComputation() const
{
    KXDisplay_940::DisplayI("Max steps in step-halving method", GetMaxStepHalvingValue());
    KXDisplay_940::DisplayI("Max number of iterations", GetMaxIterations());
    KXDisplay_940::DisplayDF("Loglikelihood convergence tolerance", GetLogLikelihoodTolerance());
    KXDisplay_940::DisplayDF("Parameter convergence tolerance", GetParameterTolerance());
    KXDisplay_940::DisplayDF("Computational tolerance", GetComputationalTolerance());
    KXDisplay_940::DisplayI("Estimator type of parameter estimate covariance matrix", GetCovbType());
    KXDisplay_940::DisplayDF("Parameter for m-dependent working correlation matrix", mDependentParameter_);
    KXDisplay_940::DisplayDF("Confidence interval level", GetConfidenceLevel());
    KXDisplay_940::DisplayI("Frequency of showing iteration history", GetHistoryFrequency());
}

} // namespace MA_NAMESPACE
