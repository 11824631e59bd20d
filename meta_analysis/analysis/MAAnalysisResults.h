#pragma once

#include "meta_analysis/analysis/MAModelResults.h"
#include "meta_analysis/analysis/steps/MABubbleRows.h"
#include "meta_analysis/analysis/steps/MARegTestRun.h"
#include "meta_analysis/analysis/studies/MASelection.h"
#include "meta_analysis/analysis/studies/MAStudies.h"
#include "meta_analysis/platform/common/CopyOf.h"
#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/settings/MAModelSettings.h"

#include <vector>

namespace MA_NAMESPACE {

/// What an analysis holds and a host reads of it: the studies, the rows of the fitted models, and all further
/// results. `MABaseModel` fills it.
///
/// Conventions of the getters: they return copies and have no side effect (an empty copy when memory
/// runs out). A per-study vector has one entry per valid study, in record order. A per-model vector has
/// one entry per fitted model. Effects are on the analysis scale: the log scale for odds and risk
/// ratios, else the natural scale. A quantity that cannot be computed is `KXMV::Missing()`.
///
/// The state stands here, and not behind a pointer, so that constructing an analysis allocates nothing and
/// cannot fail.
class META_ANALYSIS_EXPORT MAAnalysisResults
{
public:
    MAConst::MODELTYPE GetModelType() const { return modelType_; }
    MAConst::WEIGHTYPE GetWeightType() const { return weightType_; }
    MAConst::INPUTESTYPE GetInputESType() const { return inputType_; }

    /// Data counts, and the warnings, each once, in order of first occurrence.
    int GetNMissing() const { return missingCount_; }
    int GetNInvalid() const { return invalidCount_; }
    int GetNDropped() const { return droppedCount_; }
    const std::vector<KXStatus>& GetWarnings() const { return warnings_; }

    /// Per study.
    std::vector<double> GetEffectSize() const { return CopyOf(studies_.effects.effectSize); }
    std::vector<double> GetVariance() const { return CopyOf(studies_.effects.variance); }
    std::vector<double> GetStdError() const { return CopyOf(studies_.effects.stdError); }
    std::vector<double> GetZVal() const { return CopyOf(studies_.zValue); }
    std::vector<double> GetSig() const { return CopyOf(studies_.significance); }
    /// Decimal logarithm of each p-value: right also where the p-value underflows to 0, missing where it is
    /// missing. The same holds for every getter with `Log10` in its name.
    std::vector<double> GetLog10Sig() const;
    std::vector<double> GetCILower() const { return CopyOf(studies_.effects.ciLower); }
    std::vector<double> GetCIUpper() const { return CopyOf(studies_.effects.ciUpper); }
    /// Total sample sizes; empty for ready-made effect sizes.
    std::vector<double> GetSampSize() const { return CopyOf(studies_.sampleSize); }
    /// Pooling weights: 1 / (variance + tau²), or those of the binary fixed-effect model.
    std::vector<double> GetWeight() const { return CopyOf(weights_); }
    /// Weights as fractions of their sum.
    std::vector<double> GetNormalizedWeight() const;
    /// Record numbers, from 0.
    std::vector<int> GetNonMissingStudyID() const { return CopyOf(studies_.recordNumber); }

    /// Per model: the estimate with its test and confidence interval.
    std::vector<double> GetEstEffectSize() const { return ModelColumn(&MAModelRow::estimate); }
    std::vector<double> GetEstStdError() const { return ModelColumn(&MAModelRow::stdError); }
    /// z, or t under the Knapp-Hartung adjustment.
    std::vector<double> GetEstZVal() const { return ModelColumn(&MAModelRow::statistic); }
    std::vector<double> GetEstSig() const { return PValuesOf(results_.models, &MAPValue::value); }
    std::vector<double> GetEstLog10Sig() const { return PValuesOf(results_.models, &MAPValue::Log10); }
    std::vector<double> GetEstCILower() const { return ModelColumn(&MAModelRow::ciLower); }
    std::vector<double> GetEstCIUpper() const { return ModelColumn(&MAModelRow::ciUpper); }

    /// Per model: prediction interval and between-study variance; missing for fixed-effect models.
    std::vector<double> GetPILower() const { return HeterogeneityColumn(&MAHeterogeneityRow::piLower); }
    std::vector<double> GetPIUpper() const { return HeterogeneityColumn(&MAHeterogeneityRow::piUpper); }
    std::vector<double> GetTau2Var() const { return CopyOf(results_.tau2); }
    /// Per model: probability that the true effect of a new study is beyond the threshold of the settings;
    /// missing without one, and for fixed-effect models.
    std::vector<double> GetPIProbability() const
    {
        return HeterogeneityColumn(&MAHeterogeneityRow::piProbability);
    }
    /// Per model: interval of the between-study variance; missing unless the settings ask for one, and for
    /// fixed-effect models.
    std::vector<double> GetTau2CILower() const { return HeterogeneityColumn(&MAHeterogeneityRow::tau2Lower); }
    std::vector<double> GetTau2CIUpper() const { return HeterogeneityColumn(&MAHeterogeneityRow::tau2Upper); }
    /// Per model: how the between-study variance was found (a value of `MAConst::TAU2CONVERGENCE`), and in
    /// how many evaluations of the likelihood's slope, or iterations; missing for fixed-effect models.
    std::vector<double> GetTau2Convergence() const
    {
        return HeterogeneityColumn(&MAHeterogeneityRow::tau2Convergence);
    }
    std::vector<double> GetTau2Evaluations() const
    {
        return HeterogeneityColumn(&MAHeterogeneityRow::tau2Evaluations);
    }
    /// Per model: log-likelihood at the between-study variance and its criteria, see `MARandomEffectModel`;
    /// missing for estimators other than ML and REML.
    std::vector<double> GetLogLikelihood() const
    {
        return HeterogeneityColumn(&MAHeterogeneityRow::logLikelihood);
    }
    std::vector<double> GetAIC() const { return HeterogeneityColumn(&MAHeterogeneityRow::aic); }
    std::vector<double> GetBIC() const { return HeterogeneityColumn(&MAHeterogeneityRow::bic); }
    std::vector<double> GetAICc() const { return HeterogeneityColumn(&MAHeterogeneityRow::aicc); }

    /// Per model: homogeneity test; H² and I² (a fraction). Under random effects the bounds of H² and I²
    /// follow from those of the between-study variance, and are missing when these are.
    std::vector<double> GetHomoTestChisquareQ() const { return HeterogeneityColumn(&MAHeterogeneityRow::q); }
    std::vector<double> GetHomoTestdf() const { return HeterogeneityColumn(&MAHeterogeneityRow::df); }
    std::vector<double> GetHomoTestSig() const { return PValuesOf(heterogeneity_, &MAPValue::value); }
    std::vector<double> GetHomoTestLog10Sig() const { return PValuesOf(heterogeneity_, &MAPValue::Log10); }
    std::vector<double> GetH2Index() const { return HeterogeneityColumn(&MAHeterogeneityRow::h2); }
    std::vector<double> GetH2CILower() const { return HeterogeneityColumn(&MAHeterogeneityRow::h2Lower); }
    std::vector<double> GetH2CIUpper() const { return HeterogeneityColumn(&MAHeterogeneityRow::h2Upper); }
    std::vector<double> GetI2Index() const { return HeterogeneityColumn(&MAHeterogeneityRow::i2); }
    std::vector<double> GetI2CILower() const { return HeterogeneityColumn(&MAHeterogeneityRow::i2Lower); }
    std::vector<double> GetI2CIUpper() const { return HeterogeneityColumn(&MAHeterogeneityRow::i2Upper); }

    /// Distinct values of the subgroup variable, ascending; with two or more of them then -1.0 for the
    /// overall model. -1.0 alone when there is no such variable; empty without studies.
    std::vector<double> GetUniGroup() const { return CopyOf(groupValues_); }
    /// Per group: the number of its studies, and their record numbers. No entry for the overall model.
    std::vector<int> GetGroupN() const { return CopyOf(groupSizes_); }
    std::vector<std::vector<int>> GetSubGroupStudyID() const { return CopyOf(modelRecords_); }
    /// Test of heterogeneity between the groups; 0 with fewer than two groups.
    double GetGDQbVal() const { return betweenGroups_.q; }
    int GetGDQbDf() const { return betweenGroups_.df; }
    double GetGDQbSig() const { return betweenGroups_.pValue.value; }
    /// Missing where the test was not made.
    double GetGDQbLog10Sig() const { return betweenGroups_.pValue.Log10(); }

    /// Per contrast: estimate with its test and interval. Of the binary fixed-effect pooling, the z values
    /// are the standard errors once more.
    std::vector<double> GetContrastEstES() const { return FieldOf(contrasts_, &MAContrastRow::estimate); }
    std::vector<double> GetContrastEstStdError() const
    {
        return FieldOf(contrasts_, &MAContrastRow::stdError);
    }
    std::vector<double> GetContrastEstZVal() const { return FieldOf(contrasts_, &MAContrastRow::zValue); }
    std::vector<double> GetContrastEstSig() const { return PValuesOf(contrasts_, &MAPValue::value); }
    std::vector<double> GetContrastLog10Sig() const { return PValuesOf(contrasts_, &MAPValue::Log10); }
    std::vector<double> GetContrastEstCILower() const { return FieldOf(contrasts_, &MAContrastRow::ciLower); }
    std::vector<double> GetContrastEstCIUpper() const { return FieldOf(contrasts_, &MAContrastRow::ciUpper); }
    /// 0 tested, 1 all coefficients are 0, 2 tested with a warning; empty under binary fixed-effect pooling.
    std::vector<int> GetContrastStatus() const { return CopyOf(contrastStatus_); }

    /// The cumulative variable per study; then per group the values in cumulative order, and per group and
    /// step the estimate with its test and interval. With groups, a last row for the overall model.
    std::vector<double> GetCumulative() const { return CopyOf(studies_.cumulativeValue); }
    std::vector<std::vector<double>> GetEstCumulative() const { return CopyOf(cumulativeOrder_); }
    std::vector<std::vector<double>> GetCumEstES() const { return CumulativeRows(&MAModelRow::estimate); }
    std::vector<std::vector<double>> GetCumEstStdErr() const { return CumulativeRows(&MAModelRow::stdError); }
    std::vector<std::vector<double>> GetCumEstZval() const { return CumulativeRows(&MAModelRow::statistic); }
    std::vector<std::vector<double>> GetCumEstSig() const { return CumulativePValues(&MAPValue::value); }
    std::vector<std::vector<double>> GetCumEstLog10Sig() const { return CumulativePValues(&MAPValue::Log10); }
    std::vector<std::vector<double>> GetCumEstCiLower() const { return CumulativeRows(&MAModelRow::ciLower); }
    std::vector<std::vector<double>> GetCumEstCiUpper() const { return CumulativeRows(&MAModelRow::ciUpper); }

    /// Trim-and-fill: number of imputed studies, their effect sizes and standard errors, and the model of
    /// all; missing when trim-and-fill did not run.
    int GetTFImputedN0() const { return imputedCount_; }
    std::vector<double> GetTFImputedEffectSize() const { return CopyOf(imputed_.effectSize); }
    std::vector<double> GetTFImputedStdError() const { return CopyOf(imputed_.stdError); }
    double GetOverallTFEffectSize() const { return FilledModel().estimate; }
    double GetOverallTFStdError() const { return FilledModel().stdError; }
    double GetOverallTFZVal() const { return FilledModel().statistic; }
    double GetOverallTFSig() const { return FilledModel().pValue.value; }
    double GetOverallTFCILower() const { return FilledModel().ciLower; }
    double GetOverallTFCIUpper() const { return FilledModel().ciUpper; }

    /// Funnel plot, one row per plot: effect sizes and their vertical coordinates, then, after a run with
    /// trim-and-fill, a row of the imputed studies; the upper confidence line, whose mirror image is the
    /// lower; the horizontal extent of each contour level at the largest vertical coordinate, which is in
    /// ContourY.
    std::vector<std::vector<double>> GetFunnelX() const { return CopyOf(funnel_.x); }
    std::vector<std::vector<double>> GetFunnelY() const { return CopyOf(funnel_.y); }
    std::vector<std::vector<double>> GetFunnelCIX() const { return CopyOf(funnel_.lineX); }
    std::vector<std::vector<double>> GetFunnelCIY() const { return CopyOf(funnel_.lineY); }
    std::vector<std::vector<double>> GetFunnelContourX() const { return CopyOf(funnel_.contourX); }
    std::vector<double> GetFunnelContourY() const { return CopyOf(funnel_.yMax); }

    /// Galbraith plot, one row per plot: 1 / s and y / s of each study, s its standard error (row 0) or its
    /// variance (rows of groups); the slope of the line through the origin; and, despite its name, as
    /// intercept the critical value by which the two parallels to that line are offset.
    std::vector<std::vector<double>> GetGalbPlotX() const { return CopyOf(galbraith_.x); }
    std::vector<std::vector<double>> GetGalbPlotY() const { return CopyOf(galbraith_.y); }
    std::vector<double> GetGalbRegrSlope() const { return CopyOf(galbraith_.slope); }
    std::vector<double> GetGalbRegrIntercept() const { return CopyOf(galbraith_.criticalValue); }

    /// Regression-based small-study test of a driver: coefficient of the test covariate with its test and
    /// interval, missing before a test has succeeded; records used minus parameters estimated, 0 before.
    MAConst::RegBaseTestType GetRegTesType() const { return settings_->GetRegBaseTestType(); }
    double GetRegBasedTestCoef() const { return regressionTest_.coefficient; }
    double GetRegBasedTestStdError() const { return regressionTest_.stdError; }
    double GetRegBasedTestVal() const { return regressionTest_.statistic; }
    double GeRegBasedTestSig() const { return regressionTest_.pValue.value; }
    double GetRegBasedTestLog10Sig() const { return regressionTest_.pValue.Log10(); }
    double GetRegBasedTestDf() const { return regressionTest_.df; }
    double GetRegBasedTestCILower() const { return regressionTest_.ciLower; }
    double GetRegBasedTestCIUpper() const { return regressionTest_.ciUpper; }

    /// Tests of `RegBasedTest`, one entry per test: 1 when it succeeded, else 0; and of all its parameters,
    /// the test covariate last, the coefficients, standard errors, statistics, significances and confidence
    /// limits, what they are, and which are estimated.
    std::vector<int> GetIfRegrTestPassFlag() const
    {
        return FieldOf(regressionTests_, &MARegTestRun::passed);
    }
    std::vector<std::vector<double>> GetRegrTestCoefficient() const
    {
        return FieldOf(regressionTests_, &MARegTestRun::coefficients);
    }
    std::vector<std::vector<double>> GetRegrTestBetaStandErr() const
    {
        return FieldOf(regressionTests_, &MARegTestRun::stdErrors);
    }
    std::vector<std::vector<double>> GetRegrBetaTestVal() const
    {
        return FieldOf(regressionTests_, &MARegTestRun::statistics);
    }
    std::vector<std::vector<double>> GetRegrBetaTestPValue() const
    {
        return FieldOf(regressionTests_, &MARegTestRun::significances);
    }
    std::vector<std::vector<double>> GetRegrBetaConfInterValLower() const
    {
        return FieldOf(regressionTests_, &MARegTestRun::lowerLimits);
    }
    std::vector<std::vector<double>> GetRegrBetaConfInterValUpper() const
    {
        return FieldOf(regressionTests_, &MARegTestRun::upperLimits);
    }
    std::vector<std::vector<KXRegrParameter>> GetRegrCoefParameters() const
    {
        return FieldOf(regressionTests_, &MARegTestRun::parameters);
    }
    std::vector<KXBitSet> GetRegrCoefRedundancyInfo() const
    {
        return FieldOf(regressionTests_, &MARegTestRun::nonRedundant);
    }

    /// Bubble plots, one entry per covariate; see `MABubbleRows`. Flag 1 where the regression could be
    /// fitted, else 0 and empty rows. Per-study rows have an entry per valid study.
    std::vector<int> GetBubbleFlags() const { return FieldOf(bubbles_, &MABubbleRows::fitted); }
    std::vector<std::vector<double>> GetBubbleCoefs() const
    {
        return FieldOf(bubbles_, &MABubbleRows::coefficients);
    }
    std::vector<std::vector<double>> GetBubbleXs() const { return FieldOf(bubbles_, &MABubbleRows::x); }
    std::vector<std::vector<double>> GetBubblePredVals() const
    {
        return FieldOf(bubbles_, &MABubbleRows::predicted);
    }
    std::vector<std::vector<double>> GetBubbleW() const { return FieldOf(bubbles_, &MABubbleRows::weight); }
    std::vector<std::vector<double>> GetBubbleCILower() const
    {
        return FieldOf(bubbles_, &MABubbleRows::ciLower);
    }
    std::vector<std::vector<double>> GetBubbleCIUpper() const
    {
        return FieldOf(bubbles_, &MABubbleRows::ciUpper);
    }
    std::vector<std::vector<double>> GetBubbleCICurveX() const
    {
        return FieldOf(bubbles_, &MABubbleRows::curveX);
    }
    std::vector<std::vector<double>> GetBubbleCICurveLower() const
    {
        return FieldOf(bubbles_, &MABubbleRows::curveLower);
    }
    std::vector<std::vector<double>> GetBubbleCICurveUpper() const
    {
        return FieldOf(bubbles_, &MABubbleRows::curveUpper);
    }

protected:
    explicit MAAnalysisResults(const MAModelSettings& settings);
    MAAnalysisResults(const MAAnalysisResults&);
    MAAnalysisResults& operator=(const MAAnalysisResults&);
    ~MAAnalysisResults();

    const MAModelSettings* settings_; ///< the host's, not owned
    KXStatus status_;
    double alpha_ = 0.05;

    // Copies made at the start of a run.
    MAConst::MODELTYPE modelType_ = MAConst::MODEL_RANDOM;
    MAConst::TAU2ESTIMATOR tau2Estimator_ = MAConst::TAU2_REML;
    MAConst::WEIGHTYPE weightType_ = MAConst::WEIGHT_INVERSE_VARIANCE;
    MAConst::KNAPPHADJTYPE knappHartung_ = MAConst::KNAPP_HARTUNG_NONE;
    MAConst::INPUTESTYPE inputType_ = MAConst::INPUT_RAW;
    MAConst::BINESTYPE effectType_ = MAConst::BIN_ODDS_RATIO; ///< of the studies that were read

    MAConst::ZEROADJTYPE zeroAdjustment_ =
        MAConst::ZERO_ADJUST_EACH; ///< of tables, as their effect sizes left it
    bool trimFillRunning_ = false;

    MAStudies studies_;
    static constexpr int unread = -1;
    int recordCount_ = unread; ///< of the last pass that came to its end
    int missingCount_ = 0;
    int invalidCount_ = 0;
    int droppedCount_ = 0;
    std::vector<KXStatus> warnings_;

    std::vector<double> groupValues_; ///< distinct, ascending; then -1.0 for the overall model
    int groupCount_ = 0;

    MAModelResults results_;
    std::vector<MAHeterogeneityRow> heterogeneity_; ///< only grows
    std::vector<double> weights_;
    std::vector<int> groupSizes_;
    std::vector<std::vector<int>> modelRecords_;
    std::vector<MASelection> groups_; ///< studies of each group, in study or cumulative order

    MABetweenGroups betweenGroups_;
    std::vector<MAContrastRow> contrasts_;
    std::vector<int> contrastStatus_;
    std::vector<std::vector<double>> cumulativeOrder_;
    std::vector<std::vector<MAModelRow>> cumulativeRows_;
    MAModelResults filledResults_; ///< trim-and-fill's; during it, the overall model's
    MAImputedStudies imputed_;
    int imputedCount_ = 0;
    MAConst::TRIMFSIDE trimmedSide_ =
        MAConst::TRIM_SIDE_AUTO; ///< of the last trim-and-fill; before one, auto
    MAFunnelRows funnel_;
    MAGalbraithRows galbraith_;
    MARegTestRow regressionTest_;
    std::vector<MARegTestRun> regressionTests_;
    std::vector<MABubbleRows> bubbles_; ///< one entry per covariate

private:
    MAModelRow FilledModel() const
    {
        return filledResults_.models.empty() ? MAModelRow() : filledResults_.models.back();
    }
    std::vector<std::vector<double>> CumulativeRows(double MAModelRow::*field) const
    {
        return FieldOf(cumulativeRows_,
                       [=](const std::vector<MAModelRow>& steps) { return FieldOf(steps, field); });
    }
    template <class Form>
    std::vector<std::vector<double>> CumulativePValues(Form form) const
    {
        return FieldOf(cumulativeRows_,
                       [=](const std::vector<MAModelRow>& steps) { return PValuesOf(steps, form); });
    }
    std::vector<double> ModelColumn(double MAModelRow::*field) const
    {
        return FieldOf(results_.models, field);
    }
    std::vector<double> HeterogeneityColumn(double MAHeterogeneityRow::*field) const
    {
        return FieldOf(heterogeneity_, field);
    }
};

} // namespace MA_NAMESPACE
