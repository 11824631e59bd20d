#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/pooling/MAPooledModelGetters.h"
#include "meta_analysis/pooling/MAPoolingChoice.h"
#include "meta_analysis/settings/MAConst.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

struct MAEffects;

/// Random-effects pooling of effect sizes y with within-study variances v:
///     mean = sum(w y) / sum(w), variance = 1 / sum(w), w = 1 / (v + tau²),
/// with tau² from `MATAU2ESTIMATIOR`, optionally with the Knapp-Hartung adjustment (Knapp and Hartung 2003,
/// Statistics in Medicine 22, 2693-2710), a test against 0, a confidence and a prediction interval, the
/// homogeneity test, H² and I², the likelihood of ML and REML, and on request intervals of tau², H² and I².
///
/// Calling order: construct, set effect sizes, variances and options, `EstimateMeanESStats`, read the
/// getters. The vectors are the caller's and must outlive the object. Everything is on the scale of the
/// effect sizes; a result that is not defined is missing. Cost: O(k) an iteration of the estimator, no
/// allocation.
///
/// The status is sticky: after an error every setter and the estimation do nothing and return it.
class META_ANALYSIS_EXPORT MARandomEffectModel : public MAPooledModelGetters
{
public:
    MARandomEffectModel();
    MARandomEffectModel(const MARandomEffectModel&);
    MARandomEffectModel& operator=(const MARandomEffectModel&);
    virtual ~MARandomEffectModel();

    /// Study vectors. The first fixes the study count k; error `MAStatusCode::LENGTH_MISMATCH` for another
    /// length.
    KXStatus SetEffectSizes(const std::vector<double>* effectSizes);
    KXStatus SetVariances(const std::vector<double>* variances);
    /// Under an adjustment, the test and the confidence interval use Student's t with k - 1 degrees of
    /// freedom.
    KXStatus SetKHAdjType(MAConst::KNAPPHADJTYPE type);
    /// 1 - confidence level, between 0 and 1; 0.05 unless set.
    KXStatus SetSignLevel(double alpha);
    /// Limits of the iterative estimators, see `MATAU2ESTIMATIOR`.
    KXStatus SetMaxIter(int maxIter);
    KXStatus SetMaxStepHalving(int maxStepHalving);
    KXStatus SetConverTol(double tolerance);
    KXStatus SetEstimationType(MAConst::TAU2ESTIMATOR type);
    /// How ML, REML and EB find their estimate; scoring unless set.
    KXStatus SetTau2Search(MAConst::TAU2SEARCH search);
    /// Interval of tau², and by it of H² and I²; none unless set. Profile likelihood is for ML and REML, and
    /// gives none for other estimators.
    KXStatus SetTau2Interval(MAConst::TAU2INTERVAL type);
    /// Distribution of the prediction interval and of `GetPIProbability`; t with k - 2 degrees of freedom
    /// unless set.
    KXStatus SetPrediction(MAConst::PREDICTIONTYPE type);
    /// Threshold, on the scale of the effect sizes, beyond which the probability of a new study's true effect
    /// is wanted; the last one set holds, and a missing one asks for none.
    KXStatus SetProbabilityAbove(double threshold);
    KXStatus SetProbabilityBelow(double threshold);

    /// Errors: `INPUT_NOT_GIVEN` without effect sizes or variances, `LENGTH_MISMATCH` for different lengths,
    /// `TAU2_FAILED` for an estimator outside the enumeration, `OUT_OF_MEMORY`.
    KXStatus EstimateMeanESStats();

    /// tau²; 0 before the estimation, -1 after `TAU2_FAILED`.
    double GetBetweenStudyVariance() const { return model_.tau2; }
    double GetEstEffectSize() const { return model_.effect.estimate; }
    double GetEstESVariance() const { return model_.effect.variance; }
    /// The variance once more, not its square root: hosts take the root themselves.
    double GetEstESStdError() const { return model_.effect.variance; }
    /// z, or t under the Knapp-Hartung adjustment.
    double GetEstESTestStat() const { return model_.effect.statistic; }
    /// Missing, like the confidence interval, for k < 2 under the adjustment.
    double GetEstESSig() const { return model_.effect.pValue.value; }
    double GetEstESLog10Sig() const { return model_.effect.pValue.Log10(); }
    double GetEstESCIUpper() const { return model_.effect.ciUpper; }
    double GetEstESCILower() const { return model_.effect.ciLower; }
    /// Prediction interval mean ± q √(variance + tau²), q by default that of Student's t with k - 2 degrees
    /// of freedom (Higgins, Thompson and Spiegelhalter 2009, Journal of the Royal Statistical Society A 172,
    /// 137-159). NaN without degrees of freedom (k < 3); missing then under the adjustment.
    double GetEstESPIUpper() const { return model_.prediction.upper; }
    double GetEstESPILower() const { return model_.prediction.lower; }
    /// Probability that the true effect of a new study lies above (or below) the threshold c: the
    /// distribution function of the prediction at (mean - c) / √(variance + tau²), or of its negative.
    /// Missing without a threshold or without degrees of freedom, and where mean - c and variance + tau² are
    /// both 0.
    double GetPIProbability() const { return model_.prediction.probability; }
    /// Bounds of tau² at the confidence level, 0 at least. Missing unless asked for, and for k < 2.
    double GetTau2CILower() const { return model_.tau2Results.lower; }
    double GetTau2CIUpper() const { return model_.tau2Results.upper; }

    /// How tau² was found, see `MATAU2ESTIMATIOR`.
    MAConst::TAU2CONVERGENCE GetTau2Convergence() const { return model_.tau2Results.convergence; }
    int GetTau2Evaluations() const { return model_.tau2Results.evaluations; }
    /// Whether tau² of an iterative estimator is off the one that the global search proves by more than a
    /// hundredth of the latter plus the typical within-study variance, or the search proves none. Takes one
    /// search, and none after a global one that ended with a proof.
    bool HasDoubtfulTau2() const;

    /// Log-likelihood (ML) or restricted log-likelihood (REML) at tau², with all constants, and the criteria
    /// of Akaike and Schwarz with two parameters; of k observations (ML) or k - 1 (REML). Missing for other
    /// estimators and for k < 2.
    double GetLogLikelihood() const { return model_.tau2Results.information.logLikelihood; }
    double GetAIC() const { return model_.tau2Results.information.aic; }
    double GetBIC() const { return model_.tau2Results.information.bic; }
    double GetAICc() const { return model_.tau2Results.information.aicc; }

private:
    MAEffects Studies() const;

    std::size_t studyCount_ = 0;
    const std::vector<double>* effectSizes_ = nullptr;
    const std::vector<double>* variances_ = nullptr;
    MARandomEffectsChoice choice_;
    KXStatus status_;
};

} // namespace MA_NAMESPACE
