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
