#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/settings/MAConst.h"
#include "meta_analysis/settings/MAInputSettings.h"
#include "meta_analysis/settings/Memory.h"

#include <utility>
#include <vector>

namespace MA_NAMESPACE {

/// What a host asks of a meta-analysis: which variables hold what, which effect size, which model, and
/// which further analyses.
///
/// Setters store without checking, getters return what was stored; a run warns of values that give numbers
/// nobody asked for. An analysis keeps a pointer to the settings it is constructed from, reads them during
/// its run and never writes to them; they must outlive it. A getter's name is its setter's, but for the few
/// uneven pairs, which hosts rely on.
///
/// A variable is given by its position in the host's variable list; -1, the default of every one, means not
/// given, and any other position that a record does not have reads as missing.
class META_ANALYSIS_EXPORT MAModelSettings : public MAInputSettings
{
public:
    MAModelSettings() = default;
    MAModelSettings(const MAModelSettings&) = default;
    MAModelSettings& operator=(const MAModelSettings&) = default;
    virtual ~MAModelSettings();

    // ---- Effect size ----

    /// Kind of outcome; default binary, but a host should always set it. With ready-made effect sizes it
    /// decides whether they are on the log scale, and are also given as ratios.
    void SetOutcomesType(MAConst::OUTCOMETYPE value) { outcomesType_ = value; }
    MAConst::OUTCOMETYPE GetOutcomesType() const { return outcomesType_; }
    /// Raw study data (default), or effect sizes computed elsewhere. Ready-made ones cannot be corrected for
    /// zero cells nor pooled as tables: warnings `READY_MADE_EFFECTS` and `READY_MADE_EFFECTS_AGAIN`.
    void SetInputESType(MAConst::INPUTESTYPE value) { inputESType_ = value; }
    MAConst::INPUTESTYPE GetInputESType() const { return inputESType_; }
    /// Effect size of tables; default odds ratio. Ratios depend less on the baseline risk than the risk
    /// difference, which is defined where a cell is 0. Peto's odds ratio needs no correction for zero cells,
    /// but is biased for large effects and for groups of unequal size.
    void SetBinaryEstType(MAConst::BINESTYPE value) { binaryEstType_ = value; }
    MAConst::BINESTYPE GetBinaryEstType() const { return binaryEstType_; }
    /// Measure of one group's proportion, rate, correlation or mean, or of two groups' rates, for
    /// `MAOutcomeModel`; default logit of a proportion. A transformation makes the variance depend less on
    /// the value, and keeps intervals inside the possible range; raw values need no way back. Error
    /// `INPUT_NOT_GIVEN` for a value outside the enumeration.
    void SetOutcomeMeasure(MAConst::OUTCOMEMEASURE value) { outcomeMeasure_ = value; }
    MAConst::OUTCOMEMEASURE GetOutcomeMeasure() const { return outcomeMeasure_; }
    /// Effect size of means; default Cohen's d. A mean difference keeps the unit of the outcome, which all
    /// studies must share; the others are in standard deviations. Hedges' g removes the bias that d has in
    /// small studies. A value outside the enumeration computes no effect size.
    void SetContinousEstType(MAConst::CONTESTYPE value) { continousEstType_ = value; }
    MAConst::CONTESTYPE GetContinousEstType() const { return continousEstType_; }
    /// Glass's delta: the group whose standard deviation divides; default control group. One group's is not
    /// changed by the treatment, but rests on fewer persons than the pooled one of d and g.
    void SetGlassDsVarDependentGroup(MAConst::STUDYGROUPTYPE value) { glassDsVarDependentGroup_ = value; }
    MAConst::STUDYGROUPTYPE GetGlassDsVarDependentGroup() const { return glassDsVarDependentGroup_; }
    /// Mean difference: pools the variances of the groups; default false. More precise when the variances
    /// are equal, and wrong when they are not.
    void SetVarEqualAssumption(bool value) { varEqualAssumption_ = value; }
    bool GetVarEqualAssumption() const { return varEqualAssumption_; }
    /// Cohen's d and Hedges' g: the variance divides by degrees of freedom, not by sizes; default false.
    /// Larger variances in small studies.
    void SetVarianceAdjustment(bool value) { varianceAdjustment_ = value; }
    bool GetVarianceAdjustment() const { return varianceAdjustment_; }

    /// Which tables receive the zero-count constant in all cells; default each with a zero cell. Correcting
    /// tables without zero cells keeps the studies comparable, but moves their effects towards none. It holds
    /// for the counts of proportions and rates as well, for measures that are not defined at 0.
    void SetBinZeroAdjType(MAConst::ZEROADJTYPE value) { binZeroAdjType_ = value; }
    MAConst::ZEROADJTYPE GetBinZeroAdjType() const { return binZeroAdjType_; }
    /// The constant, above 0; default 0.5. A smaller one leaves a table a more extreme effect, with a larger
    /// variance.
    void SetZeroCountDelta(double value) { zeroCountDelta_ = value; }
    double GetZeroCountDelta() const { return zeroCountDelta_; }
    /// Correction of the counts that Mantel-Haenszel and Peto pool; default that of the studies' effects,
    /// though neither method needs one unless a margin of the pooled table is 0.
    void SetPooledZeroCells(MAConst::POOLEDZEROCELLS value) { pooledZeroCells_ = value; }
    MAConst::POOLEDZEROCELLS GetPooledZeroCells() const { return pooledZeroCells_; }
    /// Drops tables with no events, or no non-events, in both groups; default false. They tell nothing of a
    /// ratio, but are counted among the studies when they stay.
    void SetDropBinZero(bool value) { dropBinZero_ = value; }
    bool GetDropBinZero() const { return dropBinZero_; }

    // ---- Variables ----

    /// Group sizes; needed, as means and one measure of spread, for raw continuous data. For binary data they
    /// serve a group whose non-events are not given: these are the size minus the events.
    void SetTreatmentNIndex(int value) { treatmentNIndex_ = value; }
    int GetTreatmentNVarIndex() const { return treatmentNIndex_; }
    void SetControlNIndex(int value) { controlNIndex_ = value; }
    int GetControlNVarIndex() const { return controlNIndex_; }
    /// Group means.
    void SetTreatmentMeanIndex(int value) { treatmentMeanIndex_ = value; }
    int GetTreatmentMeanVarIndex() const { return treatmentMeanIndex_; }
    void SetControlMeanIndex(int value) { controlMeanIndex_ = value; }
    int GetControlMeanVarIndex() const { return controlMeanIndex_; }
    /// Group variances; used for a group whose standard deviation is not given.
    void SetTreatmentVarianceIndex(int value) { treatmentVarianceIndex_ = value; }
    int GetTreatMentVarianceIndex() const { return treatmentVarianceIndex_; }
    void SetControlVarianceIndex(int value) { controlVarianceIndex_ = value; }
    int GetControlVarianceIndex() const { return controlVarianceIndex_; }
    /// Group standard deviations, not standard errors, despite the name.
    void SetTreatmentStdErrorIndex(int value) { treatmentStdErrorIndex_ = value; }
    int GetTreatmentStdErrorIndex() const { return treatmentStdErrorIndex_; }
    void SetControlStdErrorIndex(int value) { controlStdErrorIndex_ = value; }
    int GetControlStdErrorIndex() const { return controlStdErrorIndex_; }
    /// Events and non-events of the groups; events, and non-events or sizes, are needed for raw binary data.
    void SetTreatmentSuccessIndex(int value) { treatmentSuccessIndex_ = value; }
    int GetTreatmentSuccessVarIndex() const { return treatmentSuccessIndex_; }
    void SetTreatmentFailureIndex(int value) { treatmentFailureIndex_ = value; }
    int GetTreatmentFailureVarIndex() const { return treatmentFailureIndex_; }
    void SetControlSuccessIndex(int value) { controlSuccessIndex_ = value; }
    int GetControlSuccessVarIndex() const { return controlSuccessIndex_; }
    void SetControlFailureIndex(int value) { controlFailureIndex_ = value; }
    int GetControlFailureVarIndex() const { return controlFailureIndex_; }
    /// Ready-made effect size, on the analysis scale (the logarithm of a ratio) unless `SetInputIsRatio`.
    void SetInputEffectSizeIndex(int value) { inputEffectSizeIndex_ = value; }
    int GetInputEffectsizeIndex() const { return inputEffectSizeIndex_; }
    /// Its variance, used before its standard error, or what `MAInputSettings` has in place of them; a study
    /// without any is invalid.
    void SetInputVarianceIndex(int value) { inputVarianceIndex_ = value; }
    int GetInputVaranceVarIndex() const { return inputVarianceIndex_; }
    void SetInputStdErrorIndex(int value) { inputStdErrorIndex_ = value; }
    int GetInputStdErrorIndex() const { return inputStdErrorIndex_; }

    // ---- Model ----

    /// Pooling model; default random effects. A fixed-effect model asks what the effect was in these studies,
    /// or assumes that it is one; random effects ask for the mean over studies like these, and widen the
    /// interval by tau². Warning `MODEL_TYPE_UNKNOWN`: any other value is random effects.
    void SetModelType(MAConst::MODELTYPE value) { modelType_ = value; }
    MAConst::MODELTYPE GetModelType() const { return modelType_; }
    /// Study weights; default inverse variance. Mantel-Haenszel or Peto, for raw tables under the
    /// fixed-effect model, hold where events are rare.
    void SetWeightType(MAConst::WEIGHTYPE value) { weightType_ = value; }
    MAConst::WEIGHTYPE GetWeightType() const { return weightType_; }
    /// Estimator of tau²; default REML, which is nearly unbiased. DerSimonian-Laird needs no iteration, but
    /// is too small when tau² is large; Hedges and Sidik-Jonkman are too large when it is small; ML is too
    /// small with few studies. Error `TAU2_FAILED` for a value outside the enumeration.
    void SetEstTauType(MAConst::TAU2ESTIMATOR value) { estTauType_ = value; }
    MAConst::TAU2ESTIMATOR GetEstTauType() const { return estTauType_; }
    /// How ML, REML and EB find tau², in every model of the analysis. The default keeps the scoring steps
    /// with their limits; hosts should set `TAU2_SEARCH_GLOBAL`, which finds the estimate that the name
    /// promises.
    void SetTau2Search(MAConst::TAU2SEARCH value) { tau2Search_ = value; }
    MAConst::TAU2SEARCH GetTau2Search() const { return tau2Search_; }
    /// Limit of the scoring steps; default 100. Warning `NO_ITERATION_ALLOWED` below 1: tau² is the start of
    /// the iteration.
    void SetMaxIter(int value) { maxIter_ = value; }
    int GetMaxIter() const { return maxIter_; }
    /// How often a scoring step that makes tau² negative is halved; default 5. With a higher limit tau² of
    /// homogeneous studies comes nearer to 0.
    void SetMaxStepHalving(int value) { maxStepHalving_ = value; }
    int GetMaxStepHalving() const { return maxStepHalving_; }
    /// Scoring ends below a step of this size, in units of tau²; default 1e-6. It is an absolute size: effect
    /// sizes in small units need a smaller one.
    void SetConvergenceTol(double value) { convergenceTol_ = value; }
    double GetConnvergenceTol() const { return convergenceTol_; }
    /// Interval of tau², and by it of I² and H², of every random-effects model but cumulative steps; default
    /// none. Q-profile is for every estimator; profile likelihood is for ML and REML (warning
    /// `TAU2_INTERVAL_UNAVAILABLE`).
    void SetTau2Interval(MAConst::TAU2INTERVAL value) { tau2Interval_ = value; }
    MAConst::TAU2INTERVAL GetTau2Interval() const { return tau2Interval_; }
    /// Adjustment of random-effects models after Knapp and Hartung; default none. The adjusted interval holds
    /// its level with few studies, but can be shorter than the plain one; the truncated one cannot. Without
    /// heterogeneity the adjusted one can be far too short, which `KNAPP_HARTUNG_IF_HETEROGENEOUS` avoids.
    void SetKnapHartAdjustType(MAConst::KNAPPHADJTYPE value) { knapHartAdjustType_ = value; }
    MAConst::KNAPPHADJTYPE GetKnapHartAdjustType() const { return knapHartAdjustType_; }
    /// Confidence level, a fraction between 0 and 1; default 0.95. Warning `CONFIDENCE_LEVEL_OUTSIDE`.
    void SetCILevel(double value) { ciLevel_ = value; }
    double GetCILevel() const { return ciLevel_; }
    /// Effect under the null hypothesis of a fixed-effect model, on the analysis scale for inverse variance,
    /// on the natural scale for Mantel-Haenszel and Peto, where 0 stands for a ratio of 1; default 0. For
    /// `MAOutcomeModel` on the natural scale, where 0 stands for 0 on the analysis scale.
    /// Warnings `RATIO_NULL_NEGATIVE`, `NULL_IGNORED` (random effects test against 0).
    void SetNullHypothesis(double value) { nullHypothesis_ = value; }
    double GetNullHypothesis() const { return nullHypothesis_; }
    /// Distribution of the prediction interval and of the probability beyond a threshold; default Student's t
    /// with k - 2 degrees of freedom for k studies. Fewer degrees of freedom make wider intervals, which
    /// allow for tau² being an estimate.
    void SetPrediction(MAConst::PREDICTIONTYPE value) { prediction_ = value; }
    MAConst::PREDICTIONTYPE GetPrediction() const { return prediction_; }
    /// Threshold beyond which the probability of a new study's true effect is wanted, on the natural scale
    /// for ratios and in `MAOutcomeModel`; missing (default): none. The one that was set last holds, and the
    /// other becomes missing.
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

    // ---- Subgroups, cumulative analysis, contrasts ----

    /// Subgroup variable; each of its values is a group, so is a missing one unless
    /// `SetOmitMissingSubgroup`. Not -1.0, which labels the overall model. Groups answer where the effect
    /// differs, with fewer studies for each tau².
    void SetSubGroupIndex(int value) { subGroupIndex_ = value; }
    int GetSubGroupIndex() const { return subGroupIndex_; }
    /// Whether studies without a value of the subgroup variable are in no group, and so in no step of the
    /// groups, but in the model of all studies alone; default false: they are a group of their own, which
    /// asks whether they differ, though they may have nothing in common. Warning `SUBGROUP_VALUE_MISSING`.
    void SetOmitMissingSubgroup(bool value) { omitMissingSubgroup_ = value; }
    bool GetOmitMissingSubgroup() const { return omitMissingSubgroup_; }
    /// Whether all subgroups share one tau², that of the meta-regression with the groups as a factor; default
    /// false. More precise with few studies a group, and wrong where the groups differ in heterogeneity. The
    /// model of all studies keeps its own tau². Warning `COMMON_TAU2_IGNORED`.
    void SetCommonTau2(bool value) { commonTau2_ = value; }
    bool GetCommonTau2() const { return commonTau2_; }
    /// Ordering variable of the cumulative analysis, which replaces the model by one for each prefix of the
    /// studies: under random effects in time that grows with the square of their number.
    void SetCommulativeIndex(int value) { commulativeIndex_ = value; }
    int GetCummulativeIndex() const { return commulativeIndex_; }
    /// Whether studies without a value of that variable are in no cumulative step and no group, but in a
    /// model of all studies behind them; default false: a missing value comes before all others. Their place
    /// in the order is unknown, so that each step before the last says less than it seems. Warning
    /// `CUMULATIVE_VALUE_MISSING`.
    void SetOmitMissingCumulative(bool value) { omitMissingCumulative_ = value; }
    bool GetOmitMissingCumulative() const { return omitMissingCumulative_; }
    /// Order of the cumulative analysis; default ascending. Any value but `SORT_ASCENDING` is descending.
    void SetSortType(MAConst::SORTYPE value) { sortType_ = value; }
    MAConst::SORTYPE GetSortType() const { return sortType_; }
    /// One variable of coefficients for each contrast; default none. Under the fixed-effect model alone:
    /// warnings `FIXED_MODEL_WITH_CONTRAST`, `CONTRAST_IGNORED`, `CONTRAST_COEFFICIENT_MISSING`.
    void SetContrastCoefIndex(std::vector<int> values) noexcept { contrastCoefIndex_ = std::move(values); }
    const std::vector<int>& GetContrastCoefIndex() const noexcept { return contrastCoefIndex_; }
    /// Coefficients given directly; default none. Only their number is checked against that of the records
    /// (warning `CONTRAST_COUNT_MISMATCH`); no result depends on them.
    void SetInputContrastCoef(std::vector<double> values) noexcept { inputContrastCoef_ = std::move(values); }
    const std::vector<double>& GetInputContrastCoef() const noexcept { return inputContrastCoef_; }

    // ---- Sensitivity ----

    /// Whether the studies are pooled once more without each of them in turn; default false. Costs a model a
    /// study.
    void SetLeaveOneOut(bool value) { leaveOneOut_ = value; }
    bool GetLeaveOneOut() const { return leaveOneOut_; }
    /// Whether deletion diagnostics are computed, which tell how much each study decides; default false.
    /// Costs a model a study.
    void SetInfluence(bool value) { influence_ = value; }
    bool GetInfluence() const { return influence_; }

    // ---- Small-study tests, trim-and-fill ----

    /// Whether a run tests the rank correlation of effect and variance (Begg and Mazumdar 1994, Biometrics
    /// 50, 1088-1101); default false. It has less power than the regression-based tests, and assumes no line.
    /// Warning `FEW_STUDIES_FOR_TEST`.
    void SetRankTest(bool value) { rankTest_ = value; }
    bool GetRankTest() const { return rankTest_; }
    /// Regression-based small-study test; default that of the effect on its standard error, which is biased
    /// for odds ratios, whose standard error depends on the effect. The others need raw tables.
    void SetRegBaseTestType(MAConst::RegBaseTestType value) { regBaseTestType_ = value; }
    MAConst::RegBaseTestType GetRegBaseTestType() const { return regBaseTestType_; }
    /// Fits that regression with an intercept; default true. Without one the line passes through the origin.
    void SetIsUseIntercept(bool value) { isUseIntercept_ = value; }
    bool GetIsUseIntercept() const { return isUseIntercept_; }
    /// Scales its covariance by the dispersion under the fixed-effect model; default false. Heterogeneity
    /// then widens the interval of the slope.
    void SetMultiDiser(bool value) { multiDisper_ = value; }
    bool GetMultiDisper() const { return multiDisper_; }
    /// Runs trim-and-fill and, with it, the regression-based test; default false.
    void SetIsTRIMFILL(bool value) { isTrimFill_ = value; }
    bool GetIsTRIMFILL() const { return isTrimFill_; }
    /// Which studies are trimmed; default decided from the data, which can go wrong where the funnel is
    /// nearly symmetric.
    void SetTrimFillSide(MAConst::TRIMFSIDE value) { trimFillSide_ = value; }
    MAConst::TRIMFSIDE GetTrimFillSide() const { return trimFillSide_; }
    /// Estimator of the number of missing studies; default linear. The run estimator goes by the extreme
    /// studies alone. Any value but those of the other two is quadratic.
    void SetTrimFillMethod(MAConst::TRIMFMETHOD value) { trimFillMethod_ = value; }
    MAConst::TRIMFMETHOD GetTrimFillMethod() const { return trimFillMethod_; }
    /// Pooling model while trimming; default random effects. Fixed effects are moved less by small studies,
    /// which are those in doubt. The filled model is that of `SetModelType`.
    void SetTFModelType(MAConst::MODELTYPE value) { tfModelType_ = value; }
    MAConst::MODELTYPE GetTFModelType() const { return tfModelType_; }
    /// Estimator of tau² while trimming; default REML.
    void SetTFEstTauType(MAConst::TAU2ESTIMATOR value) { tfEstTauType_ = value; }
    MAConst::TAU2ESTIMATOR GetTFEstTauType() const { return tfEstTauType_; }
    /// Adjustment while trimming; default none.
    void SetTFKnapHartAdjustType(MAConst::KNAPPHADJTYPE value) { tfKnapHartAdjustType_ = value; }
    MAConst::KNAPPHADJTYPE GetTFKnapHartAdjustType() const { return tfKnapHartAdjustType_; }

    // ---- Plots ----

    /// Points of each funnel-plot line, at least 1; default 100. More draw a smoother curve.
    void SetFunnelNPoints(int value) { funnelNPoints_ = value; }
    int GetFunnelNPoints() const { return funnelNPoints_; }
    /// Vertical axis of the funnel plot; default standard error, over which the limits are straight lines.
    void SetFunnelYType(MAConst::FunnelYType value) { funnelYType_ = value; }
    MAConst::FunnelYType GetFunnelYType() const { return funnelYType_; }
    /// Test behind the contours of the funnel plot; default none, which draws no contours.
    void SetFunnelConTourTesType(MAConst::FunnelConTourTesType value) { funnelConTourTesType_ = value; }
    MAConst::FunnelConTourTesType GetFunnelConTourTesType() const { return funnelConTourTesType_; }
    /// P-values at the contours, between 0 and 1; default 0.01, 0.05 and 0.1.
    void SetFunnelConTourCutoff(std::vector<double> levels) noexcept
    {
        funnelConTourCutoff_ = std::move(levels);
    }
    /// Assigns the p-values to `out`, which is empty when memory runs out.
    void GetSetFunnelConTourCutoff(std::vector<double>& out) const noexcept
    {
        out = CopyOf(funnelConTourCutoff_);
    }
    const std::vector<double>& GetFunnelConTourCutoff() const noexcept { return funnelConTourCutoff_; }
    /// Bubble plot: subtracts the mean of the covariate; default false. The intercept then is the effect at
    /// the mean; the slope is the same.
    void SetCenterBubblePlot(bool value) { centerBubblePlot_ = value; }
    bool GetCenterBubblePlot() const { return centerBubblePlot_; }
    /// Bubble plot: points of the confidence band; default 100. One point is at the smallest covariate, less
    /// than one draws no band.
    void SetBubbleCurveNPoints(int value) { bubbleCurveNPoints_ = value; }
    int GetBubbleCurveNPoints() const { return bubbleCurveNPoints_; }

private:
    MAConst::OUTCOMETYPE outcomesType_ = MAConst::OUTCOME_BINARY;
    MAConst::INPUTESTYPE inputESType_ = MAConst::INPUT_RAW;
    MAConst::WEIGHTYPE weightType_ = MAConst::WEIGHT_INVERSE_VARIANCE;
    MAConst::MODELTYPE modelType_ = MAConst::MODEL_RANDOM;
    MAConst::TAU2ESTIMATOR estTauType_ = MAConst::TAU2_REML;
    MAConst::TAU2SEARCH tau2Search_ = MAConst::TAU2_SEARCH_SCORING;
    MAConst::TAU2INTERVAL tau2Interval_ = MAConst::TAU2_INTERVAL_NONE;
    MAConst::PREDICTIONTYPE prediction_ = MAConst::PREDICTION_T_K_MINUS_2;
    double probabilityAbove_ = KXMV::Missing();
    double probabilityBelow_ = KXMV::Missing();
    MAConst::CONTESTYPE continousEstType_ = MAConst::CONT_COHENS_D;
    MAConst::BINESTYPE binaryEstType_ = MAConst::BIN_ODDS_RATIO;
    MAConst::OUTCOMEMEASURE outcomeMeasure_ = MAConst::PROPORTION_LOGIT;
    MAConst::STUDYGROUPTYPE glassDsVarDependentGroup_ = MAConst::GROUP_CONTROL;
    MAConst::RegBaseTestType regBaseTestType_ = MAConst::REG_TEST_EFFECT_ON_STD_ERROR;
    bool isUseIntercept_ = true;
    bool multiDisper_ = false;
    int treatmentNIndex_ = -1;
    int controlNIndex_ = -1;
    int treatmentMeanIndex_ = -1;
    int controlMeanIndex_ = -1;
    int treatmentVarianceIndex_ = -1;
    int controlVarianceIndex_ = -1;
    int treatmentStdErrorIndex_ = -1;
    int controlStdErrorIndex_ = -1;
    int treatmentSuccessIndex_ = -1;
    int treatmentFailureIndex_ = -1;
    int controlSuccessIndex_ = -1;
    int controlFailureIndex_ = -1;
    int inputEffectSizeIndex_ = -1;
    int inputVarianceIndex_ = -1;
    int inputStdErrorIndex_ = -1;
    std::vector<int> contrastCoefIndex_;
    std::vector<double> inputContrastCoef_;
    int subGroupIndex_ = -1;
    int commulativeIndex_ = -1;
    MAConst::SORTYPE sortType_ = MAConst::SORT_ASCENDING;
    double ciLevel_ = 0.95;
    int maxIter_ = 100;
    int maxStepHalving_ = 5;
    double convergenceTol_ = 1e-6;
    bool varEqualAssumption_ = false;
    bool varianceAdjustment_ = false;
    double nullHypothesis_ = 0.0;
    double zeroCountDelta_ = 0.5;
    MAConst::ZEROADJTYPE binZeroAdjType_ = MAConst::ZERO_ADJUST_EACH;
    MAConst::POOLEDZEROCELLS pooledZeroCells_ = MAConst::POOLED_ZERO_CELLS_AS_STUDIES;
    bool dropBinZero_ = false;
    MAConst::KNAPPHADJTYPE knapHartAdjustType_ = MAConst::KNAPP_HARTUNG_NONE;
    MAConst::TRIMFSIDE trimFillSide_ = MAConst::TRIM_SIDE_AUTO;
    MAConst::TRIMFMETHOD trimFillMethod_ = MAConst::TRIM_LINEAR;
    bool isTrimFill_ = false;
    bool commonTau2_ = false;
    bool omitMissingSubgroup_ = false;
    bool omitMissingCumulative_ = false;
    bool rankTest_ = false;
    bool leaveOneOut_ = false;
    bool influence_ = false;
    MAConst::MODELTYPE tfModelType_ = MAConst::MODEL_RANDOM;
    MAConst::TAU2ESTIMATOR tfEstTauType_ = MAConst::TAU2_REML;
    MAConst::KNAPPHADJTYPE tfKnapHartAdjustType_ = MAConst::KNAPP_HARTUNG_NONE;
    int funnelNPoints_ = 100;
    MAConst::FunnelYType funnelYType_ = MAConst::FUNNEL_STD_ERROR;
    MAConst::FunnelConTourTesType funnelConTourTesType_ = MAConst::CONTOUR_NONE;
    std::vector<double> funnelConTourCutoff_{0.01, 0.05, 0.1};
    bool centerBubblePlot_ = false;
    int bubbleCurveNPoints_ = 100;
};

} // namespace MA_NAMESPACE
