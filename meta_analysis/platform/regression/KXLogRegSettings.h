#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/regression/KXRegSettings.h"

/// Settings of regressions that are fitted by iteration, such as the logistic regression that the class was
/// first made for: categories of the dependent, convergence and iteration limits, and what is reported.
class META_ANALYSIS_EXPORT KXLogRegSettings : public KXRegSettings
{
public:
    /// Error of `IsValidSettings`: there is no dependent.
    static constexpr int DEPENDENT_NOT_GIVEN = 460009;

    KXLogRegSettings() noexcept;
    KXLogRegSettings(const KXLogRegSettings&) = default;
    KXLogRegSettings& operator=(const KXLogRegSettings&) = default;
    ~KXLogRegSettings() override;

    /// Linear in the coefficients.
    KXConst::KXRegModelType GetModelType() const override;
    /// OK, or the error DEPENDENT_NOT_GIVEN when a dependent is required and there is none.
    KXStatus IsValidSettings(bool dependentRequired) const override;

    /// Number of categories of the dependent; default 0 for a continuous one. A meta-regression's dependent
    /// is continuous; the number is shown in the debug display alone.
    void SetDependentCategories(int value) noexcept { dependentCategories_ = value; }
    int GetDependentCategories() const noexcept { return dependentCategories_; }
    /// Reference category of the dependent; default 0. Shown in the debug display alone.
    void SetDependentReference(int value) noexcept { dependentReference_ = value; }
    int GetDependentReference() const noexcept { return dependentReference_; }
    /// Change of the log-likelihood below which an iteration has converged; at least 0, default 0, which is
    /// not used. A meta-regression checks its range alone.
    void SetLogLikelihoodTolerance(double value) noexcept { logLikelihoodTolerance_ = value; }
    double GetLogLikelihoodTolerance() const noexcept { return logLikelihoodTolerance_; }
    /// Size of a step below which an iteration has converged; at least 0, default 1e-6. Of a meta-regression
    /// it is the step of tau², in units of tau²: effect sizes in small units need a smaller tolerance, which
    /// takes more iterations.
    void SetParameterTolerance(double value) noexcept { parameterTolerance_ = value; }
    double GetParameterTolerance() const noexcept { return parameterTolerance_; }
    /// Limit of iterations; default 100. Below 1 tau² is the start of the iteration.
    void SetMaxIterations(int value) noexcept { maxIterations_ = value; }
    int GetMaxIterations() const noexcept { return maxIterations_; }
    /// How often a step that leaves the range of the parameter is halved; at least 1, default 5. With a
    /// higher limit tau² of homogeneous studies comes nearer to 0.
    void SetMaxStepHalvingValue(int value) noexcept { maxStepHalving_ = value; }
    int GetMaxStepHalvingValue() const noexcept { return maxStepHalving_; }
    /// Estimator of the covariance of the coefficients; default model-based. Shown in the debug display
    /// alone: a meta-regression's is model-based.
    void SetCovbType(KXConst::KXCovbType value) noexcept { covbType_ = value; }
    KXConst::KXCovbType GetCovbType() const noexcept { return covbType_; }
    /// Steps between two lines of the iteration history; default 0 for none. Shown in the debug display
    /// alone.
    void SetHistoryFrequency(int value) noexcept { historyFrequency_ = value; }
    int GetHistoryFrequency() const noexcept { return historyFrequency_; }

private:
    int dependentCategories_ = 0;
    int dependentReference_ = 0;
    double logLikelihoodTolerance_ = 0.0;
    double parameterTolerance_ = 1e-6;
    int maxIterations_ = 100;
    int maxStepHalving_ = 5;
    KXConst::KXCovbType covbType_ = KXConst::COVB_MODEL_BASED;
    int historyFrequency_ = 0;
};
