#include "meta_analysis/regression/MARegTests.h"

#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/settings/Alpha.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

/// A smaller dispersion counts as zero: the fit is exact. Weighted residuals are of order 1 when a model
/// fits, and the square of the rounding error of one is about 1e-32; the margin is for variances far from 1.
constexpr double negligibleDispersion = 1e-12;

/// Standard error of the residual of a record with this leverage and weight. Rounding can carry the leverage
/// of a study that alone determines its fitted value beyond 1, by a margin that grows with the condition of
/// the design; beyond that it is the leverage of a record outside the fit, which has no such standard error.
double ResidualStdError(double scale, double leverage, double weight)
{
    constexpr double margin = 1e-6;
    if (!(leverage <= 1.0 + margin))
        return KXMV::Missing();
    return std::sqrt(scale * std::max(0.0, 1.0 - leverage) / weight);
}

MACoefficientTests MissingTests(std::size_t count)
{
    const std::vector<double> missing(count, KXMV::Missing());
    return {missing, missing, std::vector<MAPValue>(count), missing, missing};
}

MAModelTest UntestedModel(const MARegFit& fit)
{
    MAModelTest test;
    test.df1 = fit.TestedCount();
    test.df2 = fit.ResidualDf();
    return test;
}

} // namespace

MADispersion DispersionOf(const MARegFit& fit)
{
    if (fit.ResidualDf() == 0)
        return {1.0, KXStatus(MAStatusCode::AS_MANY_STUDIES_AS_PARAMETERS, true)};
    const double dispersion = fit.WeightedResidualSum() / fit.ResidualDf();
    if (std::abs(dispersion) < negligibleDispersion)
        return {1.0, KXStatus(MAStatusCode::DISPERSION_NEAR_ZERO, true)};
    return {dispersion, KXStatus()};
}

double CriticalValue(const MARegFit& fit, bool useStudentT)
{
    MAQuantiles quantiles(AlphaOf(fit.Design().GetSettings().GetConfidenceLevel()));
    return CriticalValue(fit.ResidualDf(), useStudentT, quantiles);
}

double CriticalValue(int residualDf, bool useStudentT, MAQuantiles& quantiles)
{
    if (!useStudentT)
        return quantiles.Normal();
    return residualDf == 0 ? 0.0 : quantiles.T(residualDf);
}

MAPValue CoefficientPValue(double statistic, int df, bool useStudentT)
{
    if (!useStudentT)
        return TwoSidedNormalPValue(statistic);
    return df != 0 ? TwoSidedTPValue(statistic, df) : MAPValue();
}

MACoefficientTest TestCoefficient(double coefficient, double stdError, double criticalValue)
{
    MACoefficientTest test;
    test.stdError = stdError;
    test.lowerLimit = coefficient - criticalValue * stdError;
    test.upperLimit = coefficient + criticalValue * stdError;
    if (stdError > 0.0)
        test.statistic = coefficient / stdError;
    return test;
}

MACoefficientTests TestCoefficients(const MARegFit& fit, double scale, bool useStudentT)
{
    const std::vector<double>& coefficients = fit.Coefficients();
    MACoefficientTests tests = MissingTests(coefficients.size());
    if (KXMV::IsMissing(scale))
        return tests;
    const double critical = CriticalValue(fit, useStudentT);
    std::vector<double> direction;
    for (std::size_t position = 0; position < fit.EstimatedColumns().size(); ++position) {
        const std::size_t j = fit.EstimatedColumns()[position];
        const double stdError = std::sqrt(scale) * fit.UnscaledStdError(position, direction);
        const MACoefficientTest test = TestCoefficient(coefficients[j], stdError, critical);
        tests.stdErrors[j] = test.stdError;
        tests.lowerLimits[j] = test.lowerLimit;
        tests.upperLimits[j] = test.upperLimit;
        tests.statistics[j] = test.statistic;
        if (!KXMV::IsMissing(test.statistic))
            tests.pValues[j] = CoefficientPValue(test.statistic, fit.ResidualDf(), useStudentT);
    }
    return tests;
}

MAModelTest WaldTest(const MARegFit& fit, double dispersion)
{
    MAModelTest test = UntestedModel(fit);
    if (test.df1 == 0 || !(dispersion > 0.0))
        return test;
    test.statistic = fit.WaldStatistic() / dispersion;
    test.pValue = ChiSquarePValue(test.statistic, test.df1);
    return test;
}

MAModelTest FTest(const MARegFit& fit, double scale)
{
    MAModelTest test = UntestedModel(fit);
    if (test.df1 == 0 || !(scale > 0.0)) // a missing scale is negative
        return test;
    test.statistic = fit.WaldStatistic() / (scale * test.df1);
    if (test.df2 != 0)
        test.pValue = FPValue(test.statistic, test.df1, test.df2);
    return test;
}

/// The leverage belongs to the unscaled fit, so that the leverages sum to the number of parameters whatever
/// the scale. Without a scale there is no standard error, but still a fit.
MARegPrediction Predict(const MARegFit& fit, double scale, double criticalValue, const MADesignRow& row,
                        bool hasStudy)
{
    MARegPrediction prediction;
    if (row.isBad || row.predictors.size() != fit.Coefficients().size())
        return prediction;
    const MARegFit::Point point = fit.At(row);
    prediction.fit = point.value;
    if (hasStudy) {
        prediction.residual = row.dependent - point.value;
        prediction.leverage = point.unscaledStdError * point.unscaledStdError * point.weight;
    }
    if (KXMV::IsMissing(scale))
        return prediction;
    prediction.stdError = std::sqrt(scale) * point.unscaledStdError;
    const double halfWidth = criticalValue * prediction.stdError;
    prediction.ciLower = point.value - halfWidth;
    prediction.ciUpper = point.value + halfWidth;
    if (hasStudy)
        prediction.residualStdError = ResidualStdError(scale, prediction.leverage, point.weight);
    return prediction;
}

} // namespace MA_NAMESPACE
