#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXConst.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/regression/KXLogRegSettings.h"
#include "meta_analysis/platform/regression/KXModelEffect.h"
#include "meta_analysis/settings/MAConst.h"

#include <vector>

class ProgressListener;

namespace MA_NAMESPACE {

/// What a host asks of a meta-regression: the effect size (the dependent), the omega weight (what gives a
/// study's weight), factors, covariates and the effects made of them, and how it is estimated and tested.
///
/// Fill it in this order: dependent, factors and covariates, then model effects; check with
/// `IsValidSettings`; hand it to an engine, which keeps a pointer to it and only reads it. Setters store
/// without checking, but for the few that return whether they did. Meanings and defaults stand beside the
/// members below, and in the base classes; a new object has no intercept. Listeners and the estimator code
/// are the host's and must outlive the object and its copies.
class META_ANALYSIS_EXPORT MARegSettings : public KXLogRegSettings
{
public:
    MARegSettings() noexcept;
    MARegSettings(const MARegSettings&) noexcept;
    MARegSettings& operator=(const MARegSettings&) noexcept;
    ~MARegSettings() override;

    /// The base's status if that is an error. Error 460009: the step-halving limit is below 1, a convergence
    /// tolerance is negative, or both are 0.
    KXStatus IsValidSettings(bool dependentRequired) const override;

    /// The effect size; false, and nothing changed, when the base refuses the variable.
    bool SetDependent(int index) override;
    bool SetSingleDependent(int index) { return SetDependent(index); }

    /// Appends a copy of an effect, and takes its variables up in the lists of what the effects use: each
    /// variable once, in the order of first use. A factor that is not in the settings yet gets size 0, and
    /// no record has a level of it. False, and nothing changed, when memory runs out.
    bool AddModelEffect(const KXModelEffect& effect) override;

    /// Writes all settings to the debug display.
    void Display() const override;

    /// False when memory ran out for a copy of these settings, whose lists are then empty: an engine made
    /// from it gives error 460099.
    bool IsComplete() const noexcept override
    {
        return KXLogRegSettings::IsComplete() && !effectVariables_.IsLost();
    }

    /// As `IsValidSettings` without requiring a dependent.
    bool IsValid() const;

    /// Whether the variable is the dependent, a factor or a covariate.
    bool HasVariable(int index) const { return (GetVariableRoles(index) & ~ROLE_WEIGHT) != 0; }
    /// The largest index of a variable with a role, weights of the base included; -1 when there is none.
    int GetMaxIndex() const { return GetMaxVariableIndex(); }
    /// Neither an effect nor an intercept.
    bool IsEmptyModel() const { return GetModelEffects().empty() && !GetInterceptUse(); }

    int GetNumOfFactors() const { return static_cast<int>(GetFactors().size()); }
    int GetNumOfCovariates() const { return static_cast<int>(GetCovariates().size()); }
    int GetNumOfModelEffects() const { return static_cast<int>(GetModelEffects().size()); }
    const std::vector<int>& GetEffectFactors() const { return effectVariables_->factors; }
    const std::vector<int>& GetEffectFactorSizes() const { return effectVariables_->factorSizes; }
    const std::vector<int>& GetEffectCovariates() const { return effectVariables_->covariates; }
    int GetNumOfEffectFactors() const { return static_cast<int>(effectVariables_->factors.size()); }
    int GetNumOfEffectCovariates() const { return static_cast<int>(effectVariables_->covariates.size()); }

    void SetIterProgressListener(ProgressListener* listener) { iterProgressListener_ = listener; }
    ProgressListener* GetIterProgressListener() const { return iterProgressListener_; }
    void SetRecProgressListener(ProgressListener* listener) { recProgressListener_ = listener; }
    ProgressListener* GetRecProgressListener() const { return recProgressListener_; }
    /// False, and nothing changed, for a negative number.
    bool SetNSkippedReports(int value);
    int GetNSkippedReports() const { return nSkippedReports_; }
    KXConst::KXDependentType GetDependentType() const { return dependentType_; }
    /// Stores the base's number of categories of the dependent; its getter nevertheless returns 0, for an
    /// effect size has none, and hosts rely on that.
    void SetDependentSize(int value) { SetDependentCategories(value); }
    int GetDependentSize() const { return 0; }
    void SetOMWVarType(MAConst::OMGWeightType value) { omwVarType_ = value; }
    MAConst::OMGWeightType GetOMWVarType() const { return omwVarType_; }
    void SetOMWVarIndex(int value) { omwVarIndex_ = value; }
    int GetOMWVarIndex() const { return omwVarIndex_; }
    void SetModelID(int value) { modelID_ = value; }
    int GetModelID() const { return modelID_; }
    void SetMultiDiser(bool value) { multiDisper_ = value; }
    bool HasMultiDisper() const { return multiDisper_; }
    /// Estimator of the between-study variance: "HE", "HS", "DL", "SJ", "ML", "REML" or "EB"; any other text
    /// estimates nothing. The pointer is kept, not the text. Null counts as the empty text.
    void SetEstTauType(const char* code) { estTauType_ = code == nullptr ? "" : code; }
    const char* GetEstTauType() const { return estTauType_; }
    /// How ML, REML and EB find tau²; default the scoring steps with their limits.
    void SetTau2Search(MAConst::TAU2SEARCH value) { tau2Search_ = value; }
    MAConst::TAU2SEARCH GetTau2Search() const { return tau2Search_; }
    /// Interval of the residual tau²; default none. Profile likelihood is for ML and REML.
    void SetTau2Interval(MAConst::TAU2INTERVAL value) { tau2Interval_ = value; }
    MAConst::TAU2INTERVAL GetTau2Interval() const { return tau2Interval_; }
    void SetKnapHartAdjust(bool value) { knapHartAdjust_ = value; }
    bool IsKnapHartAdjust() const { return knapHartAdjust_; }
    void SetTruncAjustValue(bool value) { truncAdjust_ = value; }
    bool IsTruncAjustValue() const { return truncAdjust_; }
    void SetTreatmentSuccess(int value) { treatmentSuccess_ = value; }
    int GetTreatmentSuccessVarIndex() const { return treatmentSuccess_; }
    void SetTreatmentFailure(int value) { treatmentFailure_ = value; }
    int GetTreatmentFailureVarIndex() const { return treatmentFailure_; }
    void SetControlSuccess(int value) { controlSuccess_ = value; }
    int GetControlSuccessVarIndex() const { return controlSuccess_; }
    void SetControlFailure(int value) { controlFailure_ = value; }
    int GetControlFailureVarIndex() const { return controlFailure_; }
    void SetTestDistType(MAConst::TESTDISTTYPE value) { testDistType_ = value; }
    MAConst::TESTDISTTYPE GetTestDistType() const { return testDistType_; }

protected:
    bool IsValidIterations() const { return GetMaxStepHalvingValue() > 0; }
    bool IsValidTolerance() const;
    /// Any effects will do here: one that names a variable outside the settings is found when the design
    /// matrix is built.
    bool IsValidModelEffects() const { return true; }

private:
    /// The variables that the model effects use.
    struct EffectVariables
    {
        std::vector<int> factors;
        std::vector<int> factorSizes; ///< parallel to the factors
        std::vector<int> covariates;
    };

    EffectVariables EffectVariablesWith(const KXModelEffect& effect) const;
    void DisplayReporting() const;
    void DisplayVariables() const;
    void DisplayModel() const;
    void DisplayComputation() const;

    ProgressListener* iterProgressListener_ = nullptr; ///< told of iterations
    ProgressListener* recProgressListener_ = nullptr;  ///< told of records
    int nSkippedReports_ = 0;                          ///< progress reports left out between two
    KXConst::KXDependentType dependentType_ = KXConst::DEPENDENT_NONE;
    MAConst::OMGWeightType omwVarType_ = MAConst::OMEGA_VARIANCE; ///< what the omega-weight variable holds
    /// Omega-weight variable; -1: every study has weight 1. Not the base's regression weight, of which only
    /// statistics are kept.
    int omwVarIndex_ = -1;
    Kept<EffectVariables> effectVariables_;
    double mDependentParameter_ = 0.0; ///< working correlation, for the debug display alone
    int modelID_ = 0;
    bool multiDisper_ = false;      ///< fixed effects: multiply the covariance by the dispersion
    const char* estTauType_ = "HE"; ///< not owned
    MAConst::TAU2SEARCH tau2Search_ = MAConst::TAU2_SEARCH_SCORING;
    MAConst::TAU2INTERVAL tau2Interval_ = MAConst::TAU2_INTERVAL_NONE;
    bool knapHartAdjust_ = false; ///< random effects: adjustment after Knapp and Hartung
    bool truncAdjust_ = false;    ///< its scale factor never below 1
    // Variables of a study's 2x2 table, which some regression-based small-study tests need; -1 for none.
    int treatmentSuccess_ = -1;
    int treatmentFailure_ = -1;
    int controlSuccess_ = -1;
    int controlFailure_ = -1;
    /// The Knapp-Hartung adjustment has Student's t whatever is set here.
    MAConst::TESTDISTTYPE testDistType_ = MAConst::TEST_STUDENT_T;
};

} // namespace MA_NAMESPACE
