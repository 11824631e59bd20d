#pragma once

#include "meta_analysis/platform/common/CopyOf.h"
#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/Kept.h"
#include "meta_analysis/settings/MAConst.h"

#include <vector>

namespace MA_NAMESPACE {

/// What a host asks of a meta-analysis: which variables hold what, which effect size, which model, and
/// which further analyses.
///
/// The object validates nothing and computes nothing: setters store, getters return. An analysis object
/// keeps a pointer to the settings it is constructed from, reads them during its run and never writes to
/// them; they must outlive it. Nothing here throws. A getter's name is its setter's, but for the few uneven
/// pairs, which hosts rely on. Meanings and defaults stand beside the members below.
class META_ANALYSIS_EXPORT MAModelSettings
{
public:
    MAModelSettings() noexcept;
    MAModelSettings(const MAModelSettings&) noexcept;
    MAModelSettings& operator=(const MAModelSettings&) noexcept;
    virtual ~MAModelSettings();

    /// False when memory ran out for a list that was set or copied; a run of such settings gives error
    /// 460099.
    bool IsComplete() const noexcept
    {
        return !contrastCoefIndex_.IsLost() && !inputContrastCoef_.IsLost() && !funnelConTourCutoff_.IsLost();
    }

    void SetOutcomesType(MAConst::OUTCOMETYPE value) { outcomesType_ = value; }
    MAConst::OUTCOMETYPE GetOutcomesType() const { return outcomesType_; }
    void SetInputESType(MAConst::INPUTESTYPE value) { inputESType_ = value; }
    MAConst::INPUTESTYPE GetInputESType() const { return inputESType_; }
    void SetWeightType(MAConst::WEIGHTYPE value) { weightType_ = value; }
    MAConst::WEIGHTYPE GetWeightType() const { return weightType_; }
    void SetModelType(MAConst::MODELTYPE value) { modelType_ = value; }
    MAConst::MODELTYPE GetModelType() const { return modelType_; }
    void SetEstTauType(MAConst::TAU2ESTIMATOR value) { estTauType_ = value; }
    MAConst::TAU2ESTIMATOR GetEstTauType() const { return estTauType_; }
    /// How ML, REML and EB find tau², in every model of the analysis. The default keeps the scoring steps
    /// with their limits; hosts should set `TAU2_SEARCH_GLOBAL`, which finds the estimate that the name
    /// promises.
    void SetTau2Search(MAConst::TAU2SEARCH value) { tau2Search_ = value; }
    MAConst::TAU2SEARCH GetTau2Search() const { return tau2Search_; }
    /// Interval of tau², and by it of I² and H², of every random-effects model but cumulative steps; default
    /// none. Profile likelihood is for ML and REML.
    void SetTau2Interval(MAConst::TAU2INTERVAL value) { tau2Interval_ = value; }
    MAConst::TAU2INTERVAL GetTau2Interval() const { return tau2Interval_; }
    /// Distribution of the prediction interval and of the probability beyond a threshold; default Student's t
    /// with k - 2 degrees of freedom.
    void SetPrediction(MAConst::PREDICTIONTYPE value) { prediction_ = value; }
    MAConst::PREDICTIONTYPE GetPrediction() const { return prediction_; }
    /// Threshold beyond which the probability of a new study's true effect is wanted, on the natural scale
    /// for ratios; missing (default): none. The one that was set last holds, and the other becomes missing.
    void SetProbabilityAbove(double threshold)
    {
        probabilityAbove_ = threshold;
        probabilityBelow_ = KXMV::Missing();
    }
    double GetProbabilityAbove() const { return probabilityAbove_; }
    void SetProbabilityBelow(double threshold)
    {
        probabilityBelow_ = threshold;
        probabilityAbove_ = KXMV::Missing();
    }
    double GetProbabilityBelow() const { return probabilityBelow_; }
    void SetContinousEstType(MAConst::CONTESTYPE value) { continousEstType_ = value; }
    MAConst::CONTESTYPE GetContinousEstType() const { return continousEstType_; }
    void SetBinaryEstType(MAConst::BINESTYPE value) { binaryEstType_ = value; }
    MAConst::BINESTYPE GetBinaryEstType() const { return binaryEstType_; }
    void SetGlassDsVarDependentGroup(MAConst::STUDYGROUPTYPE value) { glassDsVarDependentGroup_ = value; }
    MAConst::STUDYGROUPTYPE GetGlassDsVarDependentGroup() const { return glassDsVarDependentGroup_; }
    void SetRegBaseTestType(MAConst::RegBaseTestType value) { regBaseTestType_ = value; }
    MAConst::RegBaseTestType GetRegBaseTestType() const { return regBaseTestType_; }
    void SetIsUseIntercept(bool value) { isUseIntercept_ = value; }
    bool GetIsUseIntercept() const { return isUseIntercept_; }
    void SetMultiDiser(bool value) { multiDisper_ = value; }
    bool GetMultiDisper() const { return multiDisper_; }

    void SetTreatmentNIndex(int value) { treatmentNIndex_ = value; }
    int GetTreatmentNVarIndex() const { return treatmentNIndex_; }
    void SetControlNIndex(int value) { controlNIndex_ = value; }
    int GetControlNVarIndex() const { return controlNIndex_; }
    void SetTreatmentMeanIndex(int value) { treatmentMeanIndex_ = value; }
    int GetTreatmentMeanVarIndex() const { return treatmentMeanIndex_; }
    void SetControlMeanIndex(int value) { controlMeanIndex_ = value; }
    int GetControlMeanVarIndex() const { return controlMeanIndex_; }
    void SetTreatmentVarianceIndex(int value) { treatmentVarianceIndex_ = value; }
    int GetTreatMentVarianceIndex() const { return treatmentVarianceIndex_; }
    void SetControlVarianceIndex(int value) { controlVarianceIndex_ = value; }
    int GetControlVarianceIndex() const { return controlVarianceIndex_; }
    void SetTreatmentStdErrorIndex(int value) { treatmentStdErrorIndex_ = value; }
    int GetTreatmentStdErrorIndex() const { return treatmentStdErrorIndex_; }
    void SetControlStdErrorIndex(int value) { controlStdErrorIndex_ = value; }
    int GetControlStdErrorIndex() const { return controlStdErrorIndex_; }
    void SetTreatmentSuccessIndex(int value) { treatmentSuccessIndex_ = value; }
    int GetTreatmentSuccessVarIndex() const { return treatmentSuccessIndex_; }
    void SetTreatmentFailureIndex(int value) { treatmentFailureIndex_ = value; }
    int GetTreatmentFailureVarIndex() const { return treatmentFailureIndex_; }
    void SetControlSuccessIndex(int value) { controlSuccessIndex_ = value; }
    int GetControlSuccessVarIndex() const { return controlSuccessIndex_; }
    void SetControlFailureIndex(int value) { controlFailureIndex_ = value; }
    int GetControlFailureVarIndex() const { return controlFailureIndex_; }
    void SetInputEffectSizeIndex(int value) { inputEffectSizeIndex_ = value; }
    int GetInputEffectsizeIndex() const { return inputEffectSizeIndex_; }
    void SetInputVarianceIndex(int value) { inputVarianceIndex_ = value; }
    int GetInputVaranceVarIndex() const { return inputVarianceIndex_; }
    void SetInputStdErrorIndex(int value) { inputStdErrorIndex_ = value; }
    int GetInputStdErrorIndex() const { return inputStdErrorIndex_; }
    void SetContrastCoefIndex(const std::vector<int>& values) noexcept { contrastCoefIndex_ = values; }
    std::vector<int> GetContrastCoefIndex() const noexcept { return CopyOf(*contrastCoefIndex_); }
    void SetInputContrastCoef(const std::vector<double>& values) noexcept { inputContrastCoef_ = values; }
    std::vector<double> GetInputContrastCoef() const noexcept { return CopyOf(*inputContrastCoef_); }
    void SetSubGroupIndex(int value) { subGroupIndex_ = value; }
    int GetSubGroupIndex() const { return subGroupIndex_; }
    void SetCommulativeIndex(int value) { commulativeIndex_ = value; }
    int GetCummulativeIndex() const { return commulativeIndex_; }

    void SetSortType(MAConst::SORTYPE value) { sortType_ = value; }
    MAConst::SORTYPE GetSortType() const { return sortType_; }
    void SetCILevel(double value) { ciLevel_ = value; }
    double GetCILevel() const { return ciLevel_; }
    void SetMaxIter(int value) { maxIter_ = value; }
    int GetMaxIter() const { return maxIter_; }
    void SetMaxStepHalving(int value) { maxStepHalving_ = value; }
    int GetMaxStepHalving() const { return maxStepHalving_; }
    void SetConvergenceTol(double value) { convergenceTol_ = value; }
    double GetConnvergenceTol() const { return convergenceTol_; }
    void SetVarEqualAssumption(bool value) { varEqualAssumption_ = value; }
    bool GetVarEqualAssumption() const { return varEqualAssumption_; }
    void SetVarianceAdjustment(bool value) { varianceAdjustment_ = value; }
    bool GetVarianceAdjustment() const { return varianceAdjustment_; }
    void SetNullHypothesis(double value) { nullHypothesis_ = value; }
    double GetNullHypothesis() const { return nullHypothesis_; }
    void SetZeroCountDelta(double value) { zeroCountDelta_ = value; }
    double GetZeroCountDelta() const { return zeroCountDelta_; }
    void SetBinZeroAdjType(MAConst::ZEROADJTYPE value) { binZeroAdjType_ = value; }
    MAConst::ZEROADJTYPE GetBinZeroAdjType() const { return binZeroAdjType_; }
    /// Correction of the counts that Mantel-Haenszel and Peto pool; default that of the studies' effects.
    void SetPooledZeroCells(MAConst::POOLEDZEROCELLS value) { pooledZeroCells_ = value; }
    MAConst::POOLEDZEROCELLS GetPooledZeroCells() const { return pooledZeroCells_; }
    void SetDropBinZero(bool value) { dropBinZero_ = value; }
    bool GetDropBinZero() const { return dropBinZero_; }
    void SetKnapHartAdjustType(MAConst::KNAPPHADJTYPE value) { knapHartAdjustType_ = value; }
    MAConst::KNAPPHADJTYPE GetKnapHartAdjustType() const { return knapHartAdjustType_; }
    void SetTrimFillSide(MAConst::TRIMFSIDE value) { trimFillSide_ = value; }
    MAConst::TRIMFSIDE GetTrimFillSide() const { return trimFillSide_; }
    void SetTrimFillMethod(MAConst::TRIMFMETHOD value) { trimFillMethod_ = value; }
    MAConst::TRIMFMETHOD GetTrimFillMethod() const { return trimFillMethod_; }
    void SetIsTRIMFILL(bool value) { isTrimFill_ = value; }
    bool GetIsTRIMFILL() const { return isTrimFill_; }
    void SetTFModelType(MAConst::MODELTYPE value) { tfModelType_ = value; }
    MAConst::MODELTYPE GetTFModelType() const { return tfModelType_; }
    void SetTFEstTauType(MAConst::TAU2ESTIMATOR value) { tfEstTauType_ = value; }
    MAConst::TAU2ESTIMATOR GetTFEstTauType() const { return tfEstTauType_; }
    void SetTFKnapHartAdjustType(MAConst::KNAPPHADJTYPE value) { tfKnapHartAdjustType_ = value; }
    MAConst::KNAPPHADJTYPE GetTFKnapHartAdjustType() const { return tfKnapHartAdjustType_; }
    /// The lists themselves, where a copy would have to be checked for memory that ran out.
    const std::vector<int>& ContrastCoefIndex() const noexcept { return *contrastCoefIndex_; }
    const std::vector<double>& InputContrastCoef() const noexcept { return *inputContrastCoef_; }
    const std::vector<double>& FunnelConTourCutoff() const noexcept { return *funnelConTourCutoff_; }

    void SetFunnelNPoints(int value) { funnelNPoints_ = value; }
    int GetFunnelNPoints() const { return funnelNPoints_; }
    void SetFunnelYType(MAConst::FunnelYType value) { funnelYType_ = value; }
    MAConst::FunnelYType GetFunnelYType() const { return funnelYType_; }
    void SetFunnelConTourTesType(MAConst::FunnelConTourTesType value) { funnelConTourTesType_ = value; }
    MAConst::FunnelConTourTesType GetFunnelConTourTesType() const { return funnelConTourTesType_; }
    void SetFunnelConTourCutoff(const std::vector<double>& levels) noexcept { funnelConTourCutoff_ = levels; }
    /// Overwrites `out` with the stored levels; with none when memory runs out.
    void GetSetFunnelConTourCutoff(std::vector<double>& out) const noexcept
    {
        out = CopyOf(*funnelConTourCutoff_);
    }
    void SetCenterBubblePlot(bool value) { centerBubblePlot_ = value; }
    bool GetCenterBubblePlot() const { return centerBubblePlot_; }
    void SetBubbleCurveNPoints(int value) { bubbleCurveNPoints_ = value; }
    int GetBubbleCurveNPoints() const { return bubbleCurveNPoints_; }

private:
    /// Kind of outcome; a host should always set it.
    MAConst::OUTCOMETYPE outcomesType_ = MAConst::OUTCOME_BINARY;
    MAConst::INPUTESTYPE inputESType_ = MAConst::INPUT_RAW; ///< raw study data, or ready-made effect sizes
    /// Study weights; the binary method needs raw tables and the fixed-effect model.
    MAConst::WEIGHTYPE weightType_ = MAConst::WEIGHT_INVERSE_VARIANCE;
    MAConst::MODELTYPE modelType_ = MAConst::MODEL_RANDOM;   ///< pooling model
    MAConst::TAU2ESTIMATOR estTauType_ = MAConst::TAU2_REML; ///< between-study variance estimator
    MAConst::TAU2SEARCH tau2Search_ = MAConst::TAU2_SEARCH_SCORING;
    MAConst::TAU2INTERVAL tau2Interval_ = MAConst::TAU2_INTERVAL_NONE;
    MAConst::PREDICTIONTYPE prediction_ = MAConst::PREDICTION_T_K_MINUS_2;
    double probabilityAbove_ = KXMV::Missing();
    double probabilityBelow_ = KXMV::Missing();
    MAConst::CONTESTYPE continousEstType_ = MAConst::CONT_COHENS_D; ///< continuous effect size
    MAConst::BINESTYPE binaryEstType_ = MAConst::BIN_ODDS_RATIO;    ///< binary effect size
    /// Whose standard deviation divides in Glass's delta.
    MAConst::STUDYGROUPTYPE glassDsVarDependentGroup_ = MAConst::GROUP_CONTROL;
    /// Regression-based small-study test.
    MAConst::RegBaseTestType regBaseTestType_ = MAConst::REG_TEST_EFFECT_ON_STD_ERROR;
    bool isUseIntercept_ = true; ///< regression-based test: fit with an intercept
    bool multiDisper_ = false;   ///< regression-based test: multiplicative dispersion

    // Positions in the host's variable list; -1 means not given.
    int treatmentNIndex_ = -1;        ///< treatment-group size
    int controlNIndex_ = -1;          ///< control-group size
    int treatmentMeanIndex_ = -1;     ///< treatment-group mean
    int controlMeanIndex_ = -1;       ///< control-group mean
    int treatmentVarianceIndex_ = -1; ///< treatment-group variance
    int controlVarianceIndex_ = -1;   ///< control-group variance
    int treatmentStdErrorIndex_ = -1; ///< treatment-group standard deviation (not an error, despite the name)
    int controlStdErrorIndex_ = -1;   ///< control-group standard deviation (as above)
    int treatmentSuccessIndex_ = -1;  ///< events in the treatment group
    int treatmentFailureIndex_ = -1;  ///< non-events in the treatment group
    int controlSuccessIndex_ = -1;    ///< events in the control group
    int controlFailureIndex_ = -1;    ///< non-events in the control group
    int inputEffectSizeIndex_ = -1;   ///< ready-made effect size, on the analysis scale
    int inputVarianceIndex_ = -1;     ///< its variance; wins over the standard error when both are given
    int inputStdErrorIndex_ = -1;     ///< its standard error
    Kept<std::vector<int>> contrastCoefIndex_; ///< one variable of coefficients per contrast
    /// Coefficients given directly; only their number is checked, against the records.
    Kept<std::vector<double>> inputContrastCoef_;
    int subGroupIndex_ = -1;    ///< subgroup variable
    int commulativeIndex_ = -1; ///< ordering variable of the cumulative analysis

    MAConst::SORTYPE sortType_ = MAConst::SORT_ASCENDING; ///< order of the cumulative analysis
    double ciLevel_ = 0.95;                               ///< confidence level, a fraction
    int maxIter_ = 100;                                   ///< iteration limit of iterative estimators
    int maxStepHalving_ = 5;                              ///< step-halving limit of iterative estimators
    double convergenceTol_ = 1e-6;    ///< iterative estimators stop below a step of this size
    bool varEqualAssumption_ = false; ///< mean difference: equal group variances
    bool varianceAdjustment_ = false; ///< Cohen's d, Hedges' g: adjusted variance
    double nullHypothesis_ = 0.0;     ///< effect under the null hypothesis (fixed-effect models)
    double zeroCountDelta_ = 0.5;     ///< constant added to the cells of tables with zero counts
    MAConst::ZEROADJTYPE binZeroAdjType_ = MAConst::ZERO_ADJUST_EACH; ///< which tables receive it
    MAConst::POOLEDZEROCELLS pooledZeroCells_ = MAConst::POOLED_ZERO_CELLS_AS_STUDIES;
    bool dropBinZero_ = false; ///< drop tables with no events, or no non-events, in both groups
    /// Adjustment of the random-effects model.
    MAConst::KNAPPHADJTYPE knapHartAdjustType_ = MAConst::KNAPP_HARTUNG_NONE;
    MAConst::TRIMFSIDE trimFillSide_ = MAConst::TRIM_SIDE_AUTO; ///< which studies trim-and-fill trims
    /// Estimator of the number of missing studies.
    MAConst::TRIMFMETHOD trimFillMethod_ = MAConst::TRIM_LINEAR;
    bool isTrimFill_ = false; ///< run trim-and-fill and, with it, the regression-based test
    MAConst::MODELTYPE tfModelType_ = MAConst::MODEL_RANDOM; ///< pooling model while trimming
    /// Between-study variance estimator while trimming.
    MAConst::TAU2ESTIMATOR tfEstTauType_ = MAConst::TAU2_REML;
    MAConst::KNAPPHADJTYPE tfKnapHartAdjustType_ = MAConst::KNAPP_HARTUNG_NONE; ///< adjustment while trimming
    int funnelNPoints_ = 100;                                      ///< points of each funnel-plot line
    MAConst::FunnelYType funnelYType_ = MAConst::FUNNEL_STD_ERROR; ///< vertical axis of the funnel plot
    /// Test behind the funnel plot's contours.
    MAConst::FunnelConTourTesType funnelConTourTesType_ = MAConst::CONTOUR_NONE;
    Kept<std::vector<double>> funnelConTourCutoff_{0.01, 0.05, 0.1}; ///< significance levels of the contours
    bool centerBubblePlot_ = false;                                  ///< bubble plot: centre the covariate
    int bubbleCurveNPoints_ = 100; ///< bubble plot: points of the fitted curve
};

} // namespace MA_NAMESPACE
