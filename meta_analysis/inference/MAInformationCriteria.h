#pragma once

#include "meta_analysis/platform/common/KXMV.h"

#include <cmath>

namespace MA_NAMESPACE {

/// The log-likelihood of a random-effects model at its tau², and the criteria made of it; missing for
/// estimators that maximise no likelihood.
struct MAInformationCriteria
{
    double logLikelihood = KXMV::Missing();
    double aic = KXMV::Missing();
    double bic = KXMV::Missing();
    double aicc = KXMV::Missing();
};

/// With q parameters (the coefficients and tau²) and n observations, k for ML and k - p for REML:
///     AIC = 2q - 2l,  BIC = q log n - 2l,  AICc = AIC + 2q (q + 1) / (n - q - 1), missing unless n > q + 1.
/// Akaike (1974), IEEE Transactions on Automatic Control 19, 716-723; Schwarz (1978), Annals of Statistics 6,
/// 461-464; Hurvich and Tsai (1989), Biometrika 76, 297-307.
inline MAInformationCriteria InformationCriteria(double logLikelihood, double parameters, double observations)
{
    MAInformationCriteria criteria;
    if (!std::isfinite(logLikelihood) || observations < 1.0)
        return criteria;
    criteria.logLikelihood = logLikelihood;
    criteria.aic = 2.0 * (parameters - logLikelihood);
    criteria.bic = parameters * std::log(observations) - 2.0 * logLikelihood;
    const double spare = observations - parameters - 1.0;
    if (spare > 0.0)
        criteria.aicc = criteria.aic + 2.0 * parameters * (parameters + 1.0) / spare;
    return criteria;
}

} // namespace MA_NAMESPACE
