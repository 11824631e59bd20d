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
    KXLogRegSettings(const KXLogRegSettings&) noexcept;
    KXLogRegSettings& operator=(const KXLogRegSettings&) noexcept;
    ~KXLogRegSettings() override;

    /// Linear in the coefficients.
    KXConst::KXRegModelType GetModelType() const override;
    /// OK, or the error 460009 when a dependent is required and there is none.
    KXStatus IsValidSettings(bool dependentRequired) const override;

    void SetDependentCategories(int value) noexcept { dependentCategories_ = value; }
    int GetDependentCategories() const noexcept { return dependentCategories_; }
    void SetDependentReference(int value) noexcept { dependentReference_ = value; }
    int GetDependentReference() const noexcept { return dependentReference_; }
    void SetLogLikelihoodTolerance(double value) noexcept { logLikelihoodTolerance_ = value; }
    double GetLogLikelihoodTolerance() const noexcept { return logLikelihoodTolerance_; }
    void SetParameterTolerance(double value) noexcept { parameterTolerance_ = value; }
    double GetParameterTolerance() const noexcept { return parameterTolerance_; }
    void SetMaxIterations(int value) noexcept { maxIterations_ = value; }
    int GetMaxIterations() const noexcept { return maxIterations_; }
    void SetMaxStepHalvingValue(int value) noexcept { maxStepHalving_ = value; }
    int GetMaxStepHalvingValue() const noexcept { return maxStepHalving_; }
    void SetCovbType(KXConst::KXCovbType value) noexcept { covbType_ = value; }
    KXConst::KXCovbType GetCovbType() const noexcept { return covbType_; }
    void SetHistoryFrequency(int value) noexcept { historyFrequency_ = value; }
    int GetHistoryFrequency() const noexcept { return historyFrequency_; }

private:
    int dependentCategories_ = 0; ///< number of categories of the dependent, 0 for a continuous one
    int dependentReference_ = 0;  ///< its reference category
    // An iteration has converged when the change is below a tolerance; a tolerance of 0 is not used.
    double logLikelihoodTolerance_ = 0.0;
    double parameterTolerance_ = 1e-6;
    int maxIterations_ = 100;
    int maxStepHalving_ = 5;
    KXConst::KXCovbType covbType_ = KXConst::COVB_MODEL_BASED;
    int historyFrequency_ = 0; ///< the iteration history is shown every so many steps, 0 for never
};
