#pragma once

#include "meta_analysis/inference/MAQuantiles.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/regression/MARegFit.h"
#include "meta_analysis/regression/MARegResults.h"

namespace MA_NAMESPACE {

// Tests, intervals and predictions of a regression that is fitted. The covariance of its coefficients is
// V = scale M, with `scale` the dispersion, the factor after Knapp and Hartung, or 1; missing: there is none.

/// A prediction for one record.
struct MARegPrediction
{
    double fit = KXMV::Missing();
    double stdError = KXMV::Missing();
    double ciLower = KXMV::Missing();
    double ciUpper = KXMV::Missing();
    double residual = KXMV::Missing();
    double residualStdError = KXMV::Missing();
    double leverage = KXMV::Missing();
};

/// A dispersion, and the warning that it comes with.
struct MADispersion
{
    double value = 1.0;
    KXStatus warning;
};

/// The weighted residual variance. It is 1 with warning `AS_MANY_STUDIES_AS_PARAMETERS` without residual
/// degrees of freedom, and with warning `DISPERSION_NEAR_ZERO` for an exact fit.
MADispersion DispersionOf(const MARegFit& fit);

/// A test of one coefficient against 0, and its interval.
struct MACoefficientTest
{
    double stdError = KXMV::Missing();
    double statistic = KXMV::Missing(); ///< missing, as its p-value, for an exact fit under Knapp and Hartung
    double lowerLimit = KXMV::Missing();
    double upperLimit = KXMV::Missing();
};

MACoefficientTest TestCoefficient(double coefficient, double stdError, double criticalValue);
/// Two-sided; missing for Student's t without degrees of freedom.
MAPValue CoefficientPValue(double statistic, int df, bool useStudentT);

/// Half the width of an interval, in standard errors; 0 without residual degrees of freedom for Student's t,
/// so that intervals shrink to a point.
double CriticalValue(const MARegFit& fit, bool useStudentT);
double CriticalValue(int residualDf, bool useStudentT, MAQuantiles& quantiles);

/// Tests against 0, by Student's t or the standard normal distribution.
MACoefficientTests TestCoefficients(const MARegFit& fit, double scale, bool useStudentT);

/// Wald's chi-square: b₁'M₁⁻¹b₁ over the dispersion. Missing without a tested parameter or a scale.
MAModelTest WaldTest(const MARegFit& fit, double dispersion);

/// F test with m and k - p degrees of freedom: b₁'M₁⁻¹b₁ / (m scale). Missing as `WaldTest`.
MAModelTest FTest(const MARegFit& fit, double scale);

/// Prediction for a row of the design. The residual, its standard error and the leverage need the study's
/// dependent and weight, which are there when `hasStudy`.
MARegPrediction Predict(const MARegFit& fit, double scale, double criticalValue, const MADesignRow& row,
                        bool hasStudy);

} // namespace MA_NAMESPACE
