#pragma once

#include "meta_analysis/regression/MARegAlgorithm.h"

namespace MA_NAMESPACE {

/// Random-effects (mixed) meta-regression: estimates the residual between-study variance tau² by the
/// estimator of the settings, then fits weighted least squares with weights 1 / (variance + tau²).
///
/// Calling order as `MAFEAlgorithm`. With the Knapp-Hartung adjustment the covariance of the coefficients is
/// scaled by the weighted residual variance, tests and intervals use Student's t, and the model test is an F
/// test. Residual Q, I², H² and R² describe the heterogeneity that the predictors leave.
class META_ANALYSIS_EXPORT MAREAlgorithm final : public MARegAlgorithm
{
public:
    explicit MAREAlgorithm(const MARegSettings& settings);
    ~MAREAlgorithm();

    KXStatus BuildModel(MultiPassRecordIter& records) override;

    /// Number of the settings' estimator code in `MAConst::TAU2ESTIMATOR`; `unknownEstimator`, with which
    /// tau² stays 0, for a code that is none of theirs.
    int GetEstTauType() const;
};

} // namespace MA_NAMESPACE
