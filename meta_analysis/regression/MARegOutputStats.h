#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXBitSet.h"
#include "meta_analysis/platform/regression/KXRegrParameter.h"

#include <memory>
#include <vector>

namespace MA_NAMESPACE {

class MAFEAlgorithm;
class MAREAlgorithm;
class MARegSettings;
struct MARegResults;

/// The results of a meta-regression after a successful `BuildModel`. They stay as they are when the engine
/// builds again or is destroyed.
///
/// Vectors have one entry per parameter, in the order of the engine's parameters; a redundant parameter's
/// entries are missing. What the engine does not compute is 0: tau², R² and the F test for fixed effects, and
/// the one of the model tests (Wald, or F under the Knapp-Hartung adjustment) that does not apply.
/// An engine used by the regression-based test or the bubble plot leaves out the model tests and the residual
/// heterogeneity. A vector is empty when memory runs out for its copy.
class META_ANALYSIS_EXPORT MARegOutputStats
{
public:
    MARegOutputStats(const MARegSettings& settings, MAFEAlgorithm& engine) noexcept;
    MARegOutputStats(const MARegSettings& settings, MAREAlgorithm& engine) noexcept;
    MARegOutputStats(const MARegOutputStats&) = delete;
    MARegOutputStats& operator=(const MARegOutputStats&) = delete;
    ~MARegOutputStats();

    /// Records used by the fit, and all others.
    int GetNGoodRecords() const;
    int GetNBadRecords() const;
    /// tau² itself, not its square root.
    double GetTau() const;

    std::vector<double> GetEstimation() const;
    std::vector<KXRegrParameter> GetParameters() const;
    /// Set for the parameters that are estimated, not redundant.
    KXBitSet GetRedundancyInfo() const;
    std::vector<double> GetBetaStandErr() const;
    std::vector<double> GetBetaTest() const;
    std::vector<double> GetBetaTestPValue() const;
    /// Decimal logarithm of the p-value, which is right also where that underflows to 0.
    std::vector<double> GetBetaTestLog10PValue() const;
    std::vector<double> GetBetaConfInterValLower() const;
    std::vector<double> GetBetaConfInterValUpper() const;

    /// Test of all parameters but the intercept; missing when there are none.
    double GetWaldChiSquareTest() const;
    int GetWaldDf() const;
    double GetWaldPValue() const;
    double GetFTestVal() const;
    double GetFPValue() const;
    int GetFDf1() const;
    int GetFDf2() const;
    /// Decimal logarithm of the p-value of the one test that was made; missing when none was.
    double GetModelTestLog10PValue() const;

    double GetMultiDisper() const;
    /// Residual heterogeneity; for random effects Q is that of the fixed-effect fit. I² and R² are fractions.
    double GetResHomoChiSqure() const;
    double GetResHomoDf() const;
    double GetResHomoPValue() const;
    double GetResHomoLog10PValue() const;
    double GetHresSquare() const;
    double GetIresSquare() const;
    double GetRSquare() const;

    /// Interval of the residual between-study variance; missing unless the settings ask for one, for fixed
    /// effects and without residual degrees of freedom.
    double GetTau2CILower() const;
    double GetTau2CIUpper() const;
    /// How the residual between-study variance was found, a value of `MAConst::TAU2CONVERGENCE`, and in how
    /// many evaluations of the likelihood's slope, or iterations. 0 for fixed effects.
    int GetTau2Convergence() const;
    int GetTau2Evaluations() const;
    /// Log-likelihood (ML) or restricted log-likelihood (REML) at the residual between-study variance, with
    /// all constants, so that it does not depend on the units of the predictors, and its criteria with p + 1
    /// parameters and k (ML) or k - p (REML) observations. Missing for fixed effects and other estimators.
    double GetLogLikelihood() const;
    double GetAIC() const;
    double GetBIC() const;
    double GetAICc() const;

    /// Cluster-robust tests of the coefficients, with the sandwich variance of the settings: standard errors,
    /// statistics, degrees of freedom of Student's t (Satterthwaite's for CR2, clusters - p for CR1 and CR0),
    /// p-values, limits, covariance matrix (a row per parameter) and the number of clusters. Neither the
    /// dispersion nor the Knapp-Hartung adjustment scales them. Empty, and 0, without a cluster variable;
    /// missing for a coefficient whose parts clusters alone determine (warning `CLUSTER_DECIDES`). Source:
    /// Pustejovsky and Tipton 2018, Journal of Business and Economic Statistics 36, 672-683.
    std::vector<double> GetRobustStdError() const;
    std::vector<double> GetRobustVal() const;
    std::vector<double> GetRobustDf() const;
    std::vector<double> GetRobustSig() const;
    std::vector<double> GetRobustCILower() const;
    std::vector<double> GetRobustCIUpper() const;
    std::vector<std::vector<double>> GetRobustCovariance() const;
    int GetRobustClusters() const;

    /// Permutation p-values: of each coefficient, two-sided by the size of its test statistic; and of the
    /// model test, missing without a tested parameter. Without moderators the signs of the effect sizes are
    /// permuted, otherwise the rows of the design, and every permutation is fitted anew with its own tau².
    /// The share of permutations whose statistic is no smaller, among all of them when exact; otherwise among
    /// those drawn and the data themselves, (1 + number) / (1 + drawn). Empty, and missing, when none are
    /// asked for. Source: Higgins and Thompson 2004, Statistics in Medicine 23, 1663-1682.
    std::vector<double> GetPermutationSig() const;
    double GetPermutationModelSig() const;
    /// Permutations with a statistic, which the p-values are about (warning `PERMUTATIONS_LEFT_OUT` when some
    /// had none), and 1 when they are all that there are, else 0.
    int GetPermutationCount() const;
    int GetPermutationExact() const;
    /// Hypotheses L b = r of the settings, one entry each: L b, its standard error, (L b - r) over it, and
    /// the p-value, by the distribution of the coefficient tests: Student's t with k - p degrees of freedom,
    /// or the standard normal. Tests are missing where the standard error is 0 or missing.
    std::vector<double> GetHypothesisEstimate() const;
    std::vector<double> GetHypothesisStdError() const;
    std::vector<double> GetHypothesisVal() const;
    std::vector<double> GetHypothesisSig() const;
    std::vector<double> GetHypothesisLog10Sig() const;
    /// All hypotheses at once: (L b - r)'(L V L')⁻(L b - r), a chi-square with m = rank L degrees of freedom
    /// where the coefficients have normal tests; else that over m, an F with m and k - p.
    /// `GetHypothesisJointDf` is m, 0 without hypotheses; `GetHypothesisJointDf2` is 0 for a chi-square.
    double GetHypothesisJointVal() const;
    double GetHypothesisJointSig() const;
    double GetHypothesisJointLog10Sig() const;
    int GetHypothesisJointDf() const;
    int GetHypothesisJointDf2() const;

    /// Test of all parameters of one effect, one entry per model effect in the order of the settings: Wald's
    /// chi-square, or F under the Knapp-Hartung adjustment of random effects, as the model test. Its degrees
    /// of freedom are the parameters that are not redundant; without one the test is missing.
    /// `GetEffectTestDf2` are the second ones of F, 0 for a chi-square.
    std::vector<double> GetEffectTestVal() const;
    std::vector<double> GetEffectTestSig() const;
    std::vector<double> GetEffectTestLog10Sig() const;
    std::vector<int> GetEffectTestDf() const;
    std::vector<int> GetEffectTestDf2() const;
    /// Generalized variance inflation of the effect that a parameter belongs to, under the weights of the
    /// fit: det R₁₁ det R₂₂ / det R, with R the correlations of the coefficients beside the intercept, R₁₁ of
    /// those of the effect and R₂₂ of the others. Of an effect with one parameter it is the ordinary factor,
    /// and for a factor it does not depend on the reference level. One entry per parameter, missing for the
    /// intercept and redundant parameters. Fox and Monette (1992), J. Am. Stat. Assoc. 87, 178-183.
    std::vector<double> GetVarianceInflation() const;

    /// Predictions of the settings, one entry each, as `MAPredictedEffect` says.
    std::vector<double> GetPredictedEffect() const;
    std::vector<double> GetPredictedStdError() const;
    std::vector<double> GetPredictedCILower() const;
    std::vector<double> GetPredictedCIUpper() const;
    std::vector<double> GetPredictedPILower() const;
    std::vector<double> GetPredictedPIUpper() const;

    /// Per study used by the fit, in record order, when the settings ask for it: how much it decides. With b
    /// the coefficients, V = (X'WX)⁻¹, f = x'b the fitted value, and ' for "without the study", (y - f') /
    /// sqrt(v + tau²' + x'V'x); (f - f') / sqrt(h (v + tau²')); (b - b')'V⁻¹(b - b'); det V' / det V; tau²'
    /// (missing for fixed effects); residual Q'; the leverage h; and the weight in percent of the sum. No
    /// dispersion and no adjustment after Knapp and Hartung scales them. Missing where there is no model
    /// without the study: a coefficient would be redundant, or no residual degree of freedom left.
    /// Viechtbauer and Cheung (2010), Research Synthesis Methods 1, 112-125.
    std::vector<double> GetInfluenceStudentizedResidual() const;
    std::vector<double> GetInfluenceDFFITS() const;
    std::vector<double> GetInfluenceCookDistance() const;
    std::vector<double> GetInfluenceCovarianceRatio() const;
    std::vector<double> GetInfluenceTau2Deleted() const;
    std::vector<double> GetInfluenceQDeleted() const;
    std::vector<double> GetInfluenceHat() const;
    std::vector<double> GetInfluenceWeight() const;
    /// A row a study, an entry a parameter: (b - b') over the standard error that b has with all studies at
    /// tau²'; missing for a redundant parameter.
    std::vector<std::vector<double>> GetInfluenceDFBETAS() const;
    /// Per study: the sum of the rules (`MAConst::INFLUENCERULE`) by which it stands out; and the cut-off of
    /// each rule, in their order.
    std::vector<int> GetInfluenceRules() const;
    std::vector<double> GetInfluenceCutoffs() const;
    /// Baujat plot, per study: (y - f)² / (v + tau²), its part in the heterogeneity, and (f - f')² / x'V'x,
    /// its influence. Baujat et al. (2002), Statistics in Medicine 21, 2641-2652.
    std::vector<double> GetBaujatX() const;
    std::vector<double> GetBaujatY() const;

private:
    const MARegResults& Get() const noexcept;

    std::shared_ptr<const MARegResults> results_; ///< the engine's; null when it has created no parameters
};

} // namespace MA_NAMESPACE
