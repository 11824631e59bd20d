#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXConst.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/common/Record.h"
#include "meta_analysis/platform/regression/KXLogRegSettings.h"
#include "meta_analysis/platform/regression/KXModelEffect.h"
#include "meta_analysis/settings/MAConst.h"

#include <utility>
#include <vector>

class ProgressListener;

namespace MA_NAMESPACE {

/// What a host asks of a meta-regression: the effect size (the dependent), the omega weight (what gives a
/// study's weight), factors, covariates and the effects made of them, and how it is estimated and tested.
///
/// Fill it in this order: dependent, factors and covariates, then model effects; check with
/// `IsValidSettings`; hand it to an engine, which keeps a pointer to it and only reads it. Setters store
/// without checking, but for the few that return whether they did. A new object has no intercept. Listeners
/// and the estimator code are the host's and must outlive the object and its copies.
class META_ANALYSIS_EXPORT MARegSettings : public KXLogRegSettings
{
public:
    MARegSettings() noexcept;
    MARegSettings(const MARegSettings&) = default;
    MARegSettings& operator=(const MARegSettings&) = default;
    ~MARegSettings() override;

    /// The base's status if that is an error. Error `INPUT_NOT_GIVEN`: the step-halving limit is below 1, a
    /// convergence tolerance is negative, or both are 0.
    KXStatus IsValidSettings(bool dependentRequired) const override;

    /// The effect size; false, and nothing changed, when the base refuses the variable.
    bool SetDependent(int index) override;
    /// `SetDependent` under a second name.
    bool SetSingleDependent(int index) { return SetDependent(index); }

    /// Appends a copy of an effect, and its variables to the lists of what the effects use: each variable
    /// once, in the order of first use. A factor that is not in the settings yet gets size 0, and no record
    /// has a level of it. False, and nothing changed, when memory runs out.
    bool AddModelEffect(const KXModelEffect& effect) override;

    /// Writes all settings to the debug display.
    void Display() const override;

    /// As `IsValidSettings` without requiring a dependent.
    bool IsValid() const;

    /// Whether the variable is the dependent, a factor or a covariate.
    bool HasVariable(int index) const { return (GetVariableRoles(index) & ~ROLE_WEIGHT) != 0; }
    /// The largest index of a variable with a role, weights of the base included; -1 when there is none.
    int GetMaxIndex() const { return GetMaxVariableIndex(); }
    /// Neither an effect nor an intercept.
    bool IsEmptyModel() const { return GetModelEffects().empty() && !GetInterceptUse(); }

    /// Lengths of the lists of the base.
    int GetNumOfFactors() const { return static_cast<int>(GetFactors().size()); }
    int GetNumOfCovariates() const { return static_cast<int>(GetCovariates().size()); }
    int GetNumOfModelEffects() const { return static_cast<int>(GetModelEffects().size()); }
    /// The variables that the effects use: factors, the sizes of these factors, covariates.
    const std::vector<int>& GetEffectFactors() const { return effectVariables_.factors; }
    const std::vector<int>& GetEffectFactorSizes() const { return effectVariables_.factorSizes; }
    const std::vector<int>& GetEffectCovariates() const { return effectVariables_.covariates; }
    int GetNumOfEffectFactors() const { return static_cast<int>(effectVariables_.factors.size()); }
    int GetNumOfEffectCovariates() const { return static_cast<int>(effectVariables_.covariates.size()); }

    /// Told after every fit; default null for none.
    void SetIterProgressListener(ProgressListener* listener) { iterProgressListener_ = listener; }
    ProgressListener* GetIterProgressListener() const { return iterProgressListener_; }
    /// Told after every record of a pass; default null for none.
    void SetRecProgressListener(ProgressListener* listener) { recProgressListener_ = listener; }
    ProgressListener* GetRecProgressListener() const { return recProgressListener_; }
    /// Progress reports left out between two; at least 0, default 0. More save time where a report is slow.
    /// False, and nothing changed, for a negative number.
    bool SetNSkippedReports(int value);
    int GetNSkippedReports() const { return nSkippedReports_; }
    /// `DEPENDENT_SINGLE` once there is a dependent.
    KXConst::KXDependentType GetDependentType() const { return dependentType_; }
    /// Stores the base's number of categories of the dependent. The getter nevertheless returns 0: an effect
    /// size has no categories, and hosts rely on that.
    void SetDependentSize(int value) { SetDependentCategories(value); }
    int GetDependentSize() const { return 0; }
    /// What the omega-weight variable holds; default variance.
    void SetOMWVarType(MAConst::OMGWeightType value) { omwVarType_ = value; }
    MAConst::OMGWeightType GetOMWVarType() const { return omwVarType_; }
    /// Variable that gives a study's weight, the inverse of its variance; default -1: every study has weight
    /// 1, which leaves the precision of the studies out of account.
    void SetOMWVarIndex(int value) { omwVarIndex_ = value; }
    int GetOMWVarIndex() const { return omwVarIndex_; }
    /// Stored for the host; nothing depends on it.
    void SetModelID(int value) { modelID_ = value; }
    int GetModelID() const { return modelID_; }
    /// Fixed effects: multiplies the covariance of the coefficients by the weighted residual variance;
    /// default false. Residual heterogeneity then widens the intervals by one factor for all studies, where
    /// random effects add one variance to each.
    void SetMultiDiser(bool value) { multiDisper_ = value; }
    bool HasMultiDisper() const { return multiDisper_; }
    /// Estimator of the residual between-study variance: "HE" (default), "HS", "DL", "SJ", "ML", "REML" or
    /// "EB"; any other text estimates nothing, and tau² is 0. They trade as `MAModelSettings::SetEstTauType`
    /// says. The pointer is kept, not the text. Null counts as the empty text.
    void SetEstTauType(const char* code) { estTauType_ = code == nullptr ? "" : code; }
    const char* GetEstTauType() const { return estTauType_; }
    /// How ML, REML and EB find tau². The default keeps the scoring steps with their limits; hosts should set
    /// `TAU2_SEARCH_GLOBAL`, which finds the estimate that the name promises.
    void SetTau2Search(MAConst::TAU2SEARCH value) { tau2Search_ = value; }
    MAConst::TAU2SEARCH GetTau2Search() const { return tau2Search_; }
    /// Interval of the residual tau²; default none. Q-profile is for every estimator; profile likelihood is
    /// for ML and REML (warning `TAU2_INTERVAL_UNAVAILABLE`).
    void SetTau2Interval(MAConst::TAU2INTERVAL value) { tau2Interval_ = value; }
    MAConst::TAU2INTERVAL GetTau2Interval() const { return tau2Interval_; }
    /// Random effects: adjustment after Knapp and Hartung; default false. Tests and intervals of the
    /// coefficients then use the weighted residual variance and Student's t, and hold their level with few
    /// studies.
    void SetKnapHartAdjust(bool value) { knapHartAdjust_ = value; }
    bool IsKnapHartAdjust() const { return knapHartAdjust_; }
    /// Keeps the factor of that adjustment at 1 or above; default false. Intervals are then never shorter
    /// than by Student's t without the adjustment.
    void SetTruncAjustValue(bool value) { truncAdjust_ = value; }
    bool IsTruncAjustValue() const { return truncAdjust_; }
    /// Makes that adjustment only where tau² > 0 and more than one degree of freedom is left; default false.
    /// Otherwise the model is tested as if without the adjustment.
    void SetKnapHartIfHeterogeneous(bool value) { knapHartIfHeterogeneous_ = value; }
    bool IsKnapHartIfHeterogeneous() const { return knapHartIfHeterogeneous_; }
    /// Variables of a study's 2x2 table, which the small-study tests of types 1 to 3 need; default -1 for
    /// none.
    void SetTreatmentSuccess(int value) { treatmentSuccess_ = value; }
    int GetTreatmentSuccessVarIndex() const { return treatmentSuccess_; }
    void SetTreatmentFailure(int value) { treatmentFailure_ = value; }
    int GetTreatmentFailureVarIndex() const { return treatmentFailure_; }
    void SetControlSuccess(int value) { controlSuccess_ = value; }
    int GetControlSuccessVarIndex() const { return controlSuccess_; }
    void SetControlFailure(int value) { controlFailure_ = value; }
    int GetControlFailureVarIndex() const { return controlFailure_; }
    /// Variables of the group sizes, which serve a group whose non-events are not given; default -1 for none.
    void SetTreatmentN(int value) { treatmentN_ = value; }
    int GetTreatmentNVarIndex() const { return treatmentN_; }
    void SetControlN(int value) { controlN_ = value; }
    int GetControlNVarIndex() const { return controlN_; }
    /// Distribution of the tests and intervals of the coefficients; default Student's t with the residual
    /// degrees of freedom, wider than the normal one with few studies. The Knapp-Hartung adjustment uses
    /// Student's t whatever is set here.
    void SetTestDistType(MAConst::TESTDISTTYPE value) { testDistType_ = value; }
    MAConst::TESTDISTTYPE GetTestDistType() const { return testDistType_; }
    /// Variable whose equal values make records a cluster, for the cluster-robust variance of the
    /// coefficients; default -1 for none. A record without a value is not usable. Effect sizes of different
    /// clusters are taken as independent; those of one cluster may depend on each other in any way. Errors of
    /// the engines: `ONE_CLUSTER`, `TOO_FEW_CLUSTERS`.
    void SetCluster(int value) { cluster_ = value; }
    int GetCluster() const { return cluster_; }
    /// The robust variance; default CR2. It and its degrees of freedom hold the level of tests with few
    /// clusters, where CR1 and, above all, CR0 reject too often. Has no effect without a cluster variable.
    void SetSandwich(MAConst::SANDWICHTYPE value) { sandwich_ = value; }
    MAConst::SANDWICHTYPE GetSandwich() const { return sandwich_; }
    /// The most permutations of a permutation test of the coefficients and the model; default 0 for none. The
    /// test is exact when there are no more; otherwise so many are drawn, and a p-value p has the standard
    /// error sqrt(p (1 - p) / permutations). Each takes a fit.
    void SetPermutations(int value) { permutations_ = value; }
    int GetPermutations() const { return permutations_; }
    /// Selects the permutations drawn; any number, default 0. The same seed draws the same on every machine.
    void SetSeed(int value) { seed_ = value; }
    int GetSeed() const { return seed_; }

    /// Hypotheses L b = r about the coefficients, tested one by one and together; default none. Each row of L
    /// has a weight for every parameter of the engine, in its order, and r a value for each row; an empty r
    /// stands for zeros. The build fails with error `HYPOTHESIS_UNUSABLE` for other lengths, a weight or
    /// value that is missing or not finite, and a row of zeros; with `HYPOTHESIS_ON_REDUNDANT` for a weight
    /// on a redundant parameter, whose coefficient is not estimated; with `HYPOTHESES_CONTRADICT` when rows
    /// depend on one another and their values cannot all hold. Dependent rows without contradiction are
    /// tested, and the joint test has the rank of L as its degrees of freedom.
    void SetHypotheses(std::vector<std::vector<double>> rows, std::vector<double> values = {}) noexcept
    {
        hypothesisRows_ = std::move(rows);
        hypothesisValues_ = std::move(values);
    }
    const std::vector<std::vector<double>>& GetHypothesisRows() const { return hypothesisRows_; }
    const std::vector<double>& GetHypothesisValues() const { return hypothesisValues_; }
    /// Records with the values of covariates and factors at which every build predicts the effect, by the
    /// positions of the variables; default none. Other variables are not read.
    void SetPredictions(std::vector<Record> records) noexcept { predictions_ = std::move(records); }
    const std::vector<Record>& GetPredictions() const { return predictions_; }
    /// Reference level of a factor, from 0: its columns come last among those of every effect with the
    /// factor, so that they are the redundant ones, and the other levels are compared with it. Default -1:
    /// columns are in the order of the levels, and the last level is the reference. The build fails with
    /// error `REFERENCE_LEVEL_ABSENT` when no effect has the factor, or no usable record the level. False,
    /// and nothing changed, when memory runs out.
    bool SetReferenceLevel(int factor, int level) noexcept;
    int GetReferenceLevel(int factor) const noexcept;
    /// Factors with their reference levels, in the order set.
    const std::vector<std::pair<int, int>>& GetReferenceLevels() const { return referenceLevels_; }
    /// Whether deletion diagnostics are computed, which tell how much each study decides; default false.
    /// Costs a fit a study.
    void SetInfluence(bool value) { influence_ = value; }
    bool GetInfluence() const { return influence_; }

protected:
    bool IsValidIterations() const { return GetMaxStepHalvingValue() > 0; }
    bool IsValidTolerance() const;
    /// True for any effects: an effect that names a variable outside the settings is found when the design
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

    ProgressListener* iterProgressListener_ = nullptr;
    ProgressListener* recProgressListener_ = nullptr;
    int nSkippedReports_ = 0;
    KXConst::KXDependentType dependentType_ = KXConst::DEPENDENT_NONE;
    MAConst::OMGWeightType omwVarType_ = MAConst::OMEGA_VARIANCE;
    int omwVarIndex_ = -1;
    EffectVariables effectVariables_;
    double mDependentParameter_ = 0.0; ///< working correlation, for the debug display alone
    int modelID_ = 0;
    bool multiDisper_ = false;
    const char* estTauType_ = "HE"; ///< not owned
    MAConst::TAU2SEARCH tau2Search_ = MAConst::TAU2_SEARCH_SCORING;
    MAConst::TAU2INTERVAL tau2Interval_ = MAConst::TAU2_INTERVAL_NONE;
    bool knapHartAdjust_ = false;
    bool truncAdjust_ = false;
    bool knapHartIfHeterogeneous_ = false;
    int treatmentSuccess_ = -1;
    int treatmentFailure_ = -1;
    int controlSuccess_ = -1;
    int controlFailure_ = -1;
    int treatmentN_ = -1;
    int controlN_ = -1;
    MAConst::TESTDISTTYPE testDistType_ = MAConst::TEST_STUDENT_T;
    int cluster_ = -1;
    MAConst::SANDWICHTYPE sandwich_ = MAConst::SANDWICH_CR2;
    int permutations_ = 0;
    int seed_ = 0;
    std::vector<std::vector<double>> hypothesisRows_;
    std::vector<double> hypothesisValues_;
    std::vector<Record> predictions_;
    std::vector<std::pair<int, int>> referenceLevels_; ///< factors with their levels
    bool influence_ = false;
};

} // namespace MA_NAMESPACE
