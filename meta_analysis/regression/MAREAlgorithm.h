#pragma once

#include "meta_analysis/regression/MARegAlgorithm.h"

namespace MA_NAMESPACE {

class MARegressionCurve;
class MATAU2ESTIMATIOR;
enum class MAWeightMode;

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
    KXStatus Score(const Record& record, double& fit, double& stdError, double& lower, double& upper,
                   double& residual, double& residualStdError, double& leverage) const override;

    /// Number of the settings' estimator code: 0 "HE", 1 "HS", 2 "DL", 3 "SJ", 4 "ML", 5 "REML", 6 "EB"; 7,
    /// with which tau² stays 0, for any other code.
    int GetEstTauType() const;

private:
    KXStatus BuildFrom(MultiPassRecordIter& records);
    KXStatus FitModel();
    KXStatus computeTauSquare();
    KXStatus computeTauFromHE(int estimator);
    KXStatus computeTauFrom(MAWeightMode mode, int estimator);
    KXStatus computeTauFromSJ();
    KXStatus computeInitTau2(double& tau2) const;
    KXStatus computeTau2C(double& tau2) const;
    double TypicalVariance(MARegressionCurve& curve) const;
    void CheckTau2(MARegressionCurve& curve);
    void MeasureLikelihood(MARegressionCurve& curve);
    KXStatus EstimateTau2(const MARegFit& fit, int type, const std::vector<double>* variances);
    void SetSearch(MATAU2ESTIMATIOR& estimator) const;
    void ScaleByKnappHartung();
    KXStatus MeasureHeterogeneity(MARegressionCurve& curve);
    void MeasureExplained();
    bool UsesStudentT() const;
};

} // namespace MA_NAMESPACE
