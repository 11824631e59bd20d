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
    /// missing for a coefficient that one cluster alone determines (warning `CLUSTER_DECIDES`). Source:
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

private:
    const MARegResults& Get() const noexcept;

    std::shared_ptr<const MARegResults> results_; ///< the engine's; null when it has created no parameters
};

} // namespace MA_NAMESPACE
