#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXBitSet.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/regression/KXRegrParameter.h"
#include "meta_analysis/settings/MAModelSettings.h"

#include <memory>
#include <vector>

namespace MA_NAMESPACE {

struct MAAnalysisState;

/// What an analysis holds and a host reads of it: the studies, the rows of the fitted models, and all further
/// results. `MABaseModel` fills it.
///
/// Conventions of the getters: they return copies and have no side effect (an empty copy when memory
/// runs out). A per-study vector has one entry per valid study, in record order. A per-model vector has
/// one entry per fitted model. Effects are on the analysis scale: the log scale for odds and risk ratios,
/// that of the measure in `MAOutcomeModel`, else the natural one. `KXMV::Missing()` is no value.
class META_ANALYSIS_EXPORT MAAnalysisResults
{
public:
    MAConst::MODELTYPE GetModelType() const;
    MAConst::WEIGHTYPE GetWeightType() const;
    MAConst::INPUTESTYPE GetInputESType() const;

    /// Data counts, and the warnings, each once, in order of first occurrence.
    int GetNMissing() const;
    int GetNInvalid() const;
    int GetNDropped() const;
    const std::vector<KXStatus>& GetWarnings() const;
    /// The numbers of the records that are no study, from 0 and ascending, and why (a value of
    /// `MAConst::EXCLUSION`).
    std::vector<int> GetExcludedRecord() const;
    std::vector<int> GetExclusionReason() const;
    /// Record numbers of the studies with warning INTERVAL_ASYMMETRIC, SUMMARY_SKEWED or STD_DEV_DOUBTFUL,
    /// ascending.
    std::vector<int> GetAsymmetricIntervalStudyID() const;
    std::vector<int> GetSkewedStudyID() const;
    std::vector<int> GetDoubtfulStdDevStudyID() const;

    /// Per study.
    std::vector<double> GetEffectSize() const;
    std::vector<double> GetVariance() const;
    std::vector<double> GetStdError() const;
    std::vector<double> GetZVal() const;
    std::vector<double> GetSig() const;
    /// Decimal logarithm of each p-value: right also where the p-value underflows to 0, missing where it is
    /// missing. The same holds for every getter with `Log10` in its name.
    std::vector<double> GetLog10Sig() const;
    std::vector<double> GetCILower() const;
    std::vector<double> GetCIUpper() const;
    /// Total sample sizes; empty for ready-made effect sizes, and for rates, which have times.
    std::vector<double> GetSampSize() const;
    /// Pooling weights: 1 / (variance + tau²), or those of the binary fixed-effect model.
    std::vector<double> GetWeight() const;
    /// Weights as fractions of their sum.
    std::vector<double> GetNormalizedWeight() const;
    /// Record numbers, from 0.
    std::vector<int> GetNonMissingStudyID() const;
    /// Per study: how the ready-made effect size, or the mean and standard deviation of each group, came from
    /// what is reported (a value of `MAConst::CONVERSION`); empty unless the settings name variables that are
    /// converted.
    std::vector<int> GetEffectConversion() const;
    std::vector<int> GetTreatmentConversion() const;
    std::vector<int> GetControlConversion() const;

    /// Per model: the estimate with its test and confidence interval.
    std::vector<double> GetEstEffectSize() const;
    std::vector<double> GetEstStdError() const;
    /// z, or t under the Knapp-Hartung adjustment.
    std::vector<double> GetEstZVal() const;
    std::vector<double> GetEstSig() const;
    std::vector<double> GetEstLog10Sig() const;
    std::vector<double> GetEstCILower() const;
    std::vector<double> GetEstCIUpper() const;

    /// Per model: degrees of freedom of that test by Student's t, 0 where there is none for want of studies;
    /// missing where it is by the normal distribution.
    std::vector<double> GetEstDf() const;

    /// Per model: prediction interval and between-study variance; missing for fixed-effect models.
    std::vector<double> GetPILower() const;
    std::vector<double> GetPIUpper() const;
    std::vector<double> GetTau2Var() const;
    /// Per model: probability that the true effect of a new study is beyond the threshold of the settings;
    /// missing without one, and for fixed-effect models.
    std::vector<double> GetPIProbability() const;
    /// Per model: interval of the between-study variance; missing unless the settings ask for one, and for
    /// fixed-effect models.
    std::vector<double> GetTau2CILower() const;
    std::vector<double> GetTau2CIUpper() const;
    /// Per model: how the between-study variance was found (a value of `MAConst::TAU2CONVERGENCE`), and in
    /// how many evaluations of the likelihood's slope, or iterations; missing for fixed-effect models.
    std::vector<double> GetTau2Convergence() const;
    std::vector<double> GetTau2Evaluations() const;
    /// Per model: log-likelihood at the between-study variance and its criteria, see `MARandomEffectModel`;
    /// missing for estimators other than ML and REML.
    std::vector<double> GetLogLikelihood() const;
    std::vector<double> GetAIC() const;
    std::vector<double> GetBIC() const;
    std::vector<double> GetAICc() const;

    /// Per model: homogeneity test; H² and I² (a fraction). Under random effects the bounds of H² and I²
    /// follow from those of the between-study variance, and are missing when these are.
    std::vector<double> GetHomoTestChisquareQ() const;
    std::vector<double> GetHomoTestdf() const;
    std::vector<double> GetHomoTestSig() const;
    std::vector<double> GetHomoTestLog10Sig() const;
    std::vector<double> GetH2Index() const;
    std::vector<double> GetH2CILower() const;
    std::vector<double> GetH2CIUpper() const;
    std::vector<double> GetI2Index() const;
    std::vector<double> GetI2CILower() const;
    std::vector<double> GetI2CIUpper() const;

    /// Distinct values of the subgroup variable, ascending; behind two or more -1.0, the overall model.
    /// -1.0 alone without such a variable, or with one value beside omitted ones; empty without studies.
    std::vector<double> GetUniGroup() const;
    /// Per group: the number of its studies, and their record numbers. No entry for the overall model.
    std::vector<int> GetGroupN() const;
    std::vector<std::vector<int>> GetSubGroupStudyID() const;
    /// Record numbers, from 0, of the studies that are in no group because their value of the subgroup
    /// variable is missing; empty unless `SetOmitMissingSubgroup`. The overall model has them.
    std::vector<int> GetSubgroupMissing() const;
    /// Test of heterogeneity between the groups; 0 with fewer than two groups.
    double GetGDQbVal() const;
    int GetGDQbDf() const;
    double GetGDQbSig() const;
    /// Missing where the test was not made.
    double GetGDQbLog10Sig() const;
    /// The same hypothesis tested by F, with the variances of the groups' means after Knapp and Hartung:
    /// statistic, degrees of freedom and p-value. With a common tau² the model test of the meta-regression
    /// with the groups as a factor; else the test of Welch (1951), Biometrika 38, 330-336, whose second
    /// degrees of freedom are a fraction. Missing unless a group is adjusted, and where a group has no
    /// degrees of freedom.
    double GetGDQbF() const;
    double GetGDQbFDf1() const;
    double GetGDQbFDf2() const;
    double GetGDQbFSig() const;
    double GetGDQbFLog10Sig() const;

    /// Per contrast: estimate with its test and interval. Of the binary fixed-effect pooling, the z values
    /// are the standard errors once more.
    std::vector<double> GetContrastEstES() const;
    std::vector<double> GetContrastEstStdError() const;
    std::vector<double> GetContrastEstZVal() const;
    std::vector<double> GetContrastEstSig() const;
    std::vector<double> GetContrastLog10Sig() const;
    std::vector<double> GetContrastEstCILower() const;
    std::vector<double> GetContrastEstCIUpper() const;
    /// 0 tested, 1 all coefficients are 0, 2 tested with a warning; empty under binary fixed-effect pooling.
    std::vector<int> GetContrastStatus() const;
    /// Per contrast that was tested: record numbers of the studies without a coefficient, which it leaves
    /// out.
    std::vector<std::vector<int>> GetContrastMissing() const;

    /// The cumulative variable per study; then per group the values in cumulative order, and per group and
    /// step the estimate with its test and interval. With groups, or with studies that are in no step, a
    /// last row for the overall model.
    std::vector<double> GetCumulative() const;
    /// Record numbers, from 0, of the studies that are in no step because their value of the cumulative
    /// variable is missing; empty unless `SetOmitMissingCumulative`.
    std::vector<int> GetCumulativeMissing() const;
    std::vector<std::vector<double>> GetEstCumulative() const;
    std::vector<std::vector<double>> GetCumEstES() const;
    std::vector<std::vector<double>> GetCumEstStdErr() const;
    std::vector<std::vector<double>> GetCumEstZval() const;
    std::vector<std::vector<double>> GetCumEstSig() const;
    std::vector<std::vector<double>> GetCumEstLog10Sig() const;
    std::vector<std::vector<double>> GetCumEstCiLower() const;
    std::vector<std::vector<double>> GetCumEstCiUpper() const;

    /// Per study, when the settings ask for it: the model of all studies but that one.
    std::vector<double> GetLeaveOneOutEffectSize() const;
    std::vector<double> GetLeaveOneOutStdError() const;
    std::vector<double> GetLeaveOneOutZVal() const;
    std::vector<double> GetLeaveOneOutSig() const;
    std::vector<double> GetLeaveOneOutCILower() const;
    std::vector<double> GetLeaveOneOutCIUpper() const;
    std::vector<double> GetLeaveOneOutTau2Var() const;
    std::vector<double> GetLeaveOneOutChisquareQ() const;
    std::vector<double> GetLeaveOneOutI2Index() const;

    /// Per study, when the settings ask for it: how much it decides. With μ the pooled effect and ' for
    /// "without the study", (y - μ') / sqrt(v + tau²' + Var μ'); (μ - μ') / sqrt(h (v + tau²')) with the
    /// leverage h; (μ - μ')² / Var μ; Var μ' / Var μ; tau²' (missing for fixed effects); Cochran's Q'; h = w
    /// / sum(w); and 100 h. The adjustment after Knapp and Hartung scales none. Missing where there is no
    /// model without the study. Viechtbauer and Cheung (2010), Research Synthesis Methods 1, 112-125.
    std::vector<double> GetInfluenceStudentizedResidual() const;
    std::vector<double> GetInfluenceDFFITS() const;
    std::vector<double> GetInfluenceCookDistance() const;
    std::vector<double> GetInfluenceCovarianceRatio() const;
    std::vector<double> GetInfluenceTau2Deleted() const;
    std::vector<double> GetInfluenceQDeleted() const;
    std::vector<double> GetInfluenceHat() const;
    std::vector<double> GetInfluenceWeight() const;
    /// Per study: the sum of the rules (`MAConst::INFLUENCERULE`) by which it stands out; and the cut-off of
    /// each rule, in their order.
    std::vector<int> GetInfluenceRules() const;
    std::vector<double> GetInfluenceCutoffs() const;
    /// Baujat plot, per study: (y - μ)² / (v + tau²), its part in the heterogeneity, and (μ - μ')² / Var μ',
    /// its influence. Baujat et al. (2002), Statistics in Medicine 21, 2641-2652.
    std::vector<double> GetBaujatX() const;
    std::vector<double> GetBaujatY() const;

    /// Trim-and-fill: number of imputed studies, their effect sizes and standard errors, and the model of
    /// all; missing when trim-and-fill did not run.
    int GetTFImputedN0() const;
    std::vector<double> GetTFImputedEffectSize() const;
    std::vector<double> GetTFImputedStdError() const;
    double GetOverallTFEffectSize() const;
    double GetOverallTFStdError() const;
    double GetOverallTFZVal() const;
    double GetOverallTFSig() const;
    double GetOverallTFCILower() const;
    double GetOverallTFCIUpper() const;

    /// Funnel plot, one row per plot: effect sizes and their vertical coordinates, then, after a run with
    /// trim-and-fill, a row of the imputed studies; the upper confidence line, whose mirror image is the
    /// lower; the horizontal extent of each contour level at the largest vertical coordinate, which is in
    /// ContourY.
    std::vector<std::vector<double>> GetFunnelX() const;
    std::vector<std::vector<double>> GetFunnelY() const;
    std::vector<std::vector<double>> GetFunnelCIX() const;
    std::vector<std::vector<double>> GetFunnelCIY() const;
    std::vector<std::vector<double>> GetFunnelContourX() const;
    std::vector<double> GetFunnelContourY() const;

    /// Galbraith plot, one row per plot: 1 / s and y / s of each study, s its standard error (row 0) or its
    /// variance (rows of groups); the slope of the line through the origin; and, despite its name, as
    /// intercept the critical value by which the two parallels to that line are offset.
    std::vector<std::vector<double>> GetGalbPlotX() const;
    std::vector<std::vector<double>> GetGalbPlotY() const;
    std::vector<double> GetGalbRegrSlope() const;
    std::vector<double> GetGalbRegrIntercept() const;

    /// Regression-based small-study test of a driver: coefficient of the test covariate with its test and
    /// interval, missing before a test has succeeded; records used minus parameters estimated, 0 before.
    MAConst::RegBaseTestType GetRegTesType() const;
    double GetRegBasedTestCoef() const;
    double GetRegBasedTestStdError() const;
    double GetRegBasedTestVal() const;
    double GeRegBasedTestSig() const;
    double GetRegBasedTestLog10Sig() const;
    double GetRegBasedTestDf() const;
    double GetRegBasedTestCILower() const;
    double GetRegBasedTestCIUpper() const;
    /// Effect at standard error 0, the intercept of that regression, with its interval; missing for other
    /// types than that of the effect on its standard error, and without intercept. Moreno et al. (2009), BMC
    /// Medical Research Methodology 9, 2.
    double GetRegBasedTestLimit() const;
    double GetRegBasedTestLimitCILower() const;
    double GetRegBasedTestLimitCIUpper() const;

    /// Rank correlation test, when the settings ask for it: Kendall's tau-b of the standardised deviates and
    /// the variances, and its two-sided p-values, by the normal distribution and exact. The latter is missing
    /// with ties and for 50 studies or more; all are where all effects or all variances are equal.
    double GetRankTestTau() const;
    double GetRankTestSig() const;
    double GetRankTestExactSig() const;

    /// Tests of `RegBasedTest`, one entry per test: 1 when it succeeded, else 0; and of all its parameters,
    /// the test covariate last, the coefficients, standard errors, statistics, significances and confidence
    /// limits, what they are, and which are estimated.
    std::vector<int> GetIfRegrTestPassFlag() const;
    std::vector<std::vector<double>> GetRegrTestCoefficient() const;
    std::vector<std::vector<double>> GetRegrTestBetaStandErr() const;
    std::vector<std::vector<double>> GetRegrBetaTestVal() const;
    std::vector<std::vector<double>> GetRegrBetaTestPValue() const;
    std::vector<std::vector<double>> GetRegrBetaConfInterValLower() const;
    std::vector<std::vector<double>> GetRegrBetaConfInterValUpper() const;
    std::vector<std::vector<KXRegrParameter>> GetRegrCoefParameters() const;
    std::vector<KXBitSet> GetRegrCoefRedundancyInfo() const;

    /// Bubble plots, one entry per covariate; see `MABubbleRows`. Flag 1 where the regression could be
    /// fitted, else 0 and empty rows. Per-study rows have an entry per valid study.
    std::vector<int> GetBubbleFlags() const;
    /// Per covariate: record numbers of the studies without a value of it, which the plot leaves out.
    std::vector<std::vector<int>> GetBubbleMissing() const;
    std::vector<std::vector<double>> GetBubbleCoefs() const;
    std::vector<std::vector<double>> GetBubbleXs() const;
    std::vector<std::vector<double>> GetBubblePredVals() const;
    std::vector<std::vector<double>> GetBubbleW() const;
    std::vector<std::vector<double>> GetBubbleCILower() const;
    std::vector<std::vector<double>> GetBubbleCIUpper() const;
    std::vector<std::vector<double>> GetBubbleCICurveX() const;
    std::vector<std::vector<double>> GetBubbleCICurveLower() const;
    std::vector<std::vector<double>> GetBubbleCICurveUpper() const;
    /// Prediction limits of a new study's true effect at the points of the curve; and the test of each slope,
    /// by the normal distribution or by t as the regression settings say, with its interval.
    std::vector<std::vector<double>> GetBubblePICurveLower() const;
    std::vector<std::vector<double>> GetBubblePICurveUpper() const;
    std::vector<double> GetBubbleSlopeStdError() const;
    std::vector<double> GetBubbleSlopeVal() const;
    std::vector<double> GetBubbleSlopeSig() const;
    std::vector<double> GetBubbleSlopeCILower() const;
    std::vector<double> GetBubbleSlopeCIUpper() const;

protected:
    MAAnalysisResults(const MAModelSettings& settings, MAConst::OUTCOMETYPE outcome);
    MAAnalysisResults(const MAAnalysisResults&);
    MAAnalysisResults& operator=(const MAAnalysisResults&);
    ~MAAnalysisResults();

    /// The state to write to. Constructing an analysis allocates nothing and cannot fail: the first operation
    /// makes the state, and may throw std::bad_alloc.
    MAAnalysisState& State();
    bool HasState() const noexcept { return state_ != nullptr; }
    /// The state to read.
    const MAAnalysisState& Results() const noexcept;
    /// Forgets everything, as a run does that begins afresh.
    void Restart();

    const MAModelSettings* settings_; ///< the host's, not owned
    MAConst::OUTCOMETYPE outcome_;
    KXStatus status_;

private:
    std::unique_ptr<MAAnalysisState> state_;
};

} // namespace MA_NAMESPACE
