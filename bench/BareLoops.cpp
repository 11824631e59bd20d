#include "BareLoops.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace bare {

namespace {

// The defaults of the library.
constexpr double convergenceTolerance = 1e-6;
constexpr int maxIterations = 100;
constexpr double normalQuantile = 1.959963984540054; // of a two-sided level of 95%

double Significance(double z)
{
    return std::erfc(std::abs(z) / std::sqrt(2.0));
}

struct WeightedMean
{
    double mean;
    double weightSum;
};

/// The weighted mean with weights 1 / (tau2 + v).
WeightedMean Pool(const double* y, const double* v, std::size_t n, double tau2)
{
    double weightSum = 0.0;
    double weightedSum = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        const double weight = 1.0 / (tau2 + v[i]);
        weightSum += weight;
        weightedSum += weight * y[i];
    }
    return {weightedSum / weightSum, weightSum};
}

/// Starting value: the sample variance of the effects less the mean of their variances.
double HedgesTau2(const double* y, const double* v, std::size_t n)
{
    const auto count = static_cast<double>(n);
    double sum = 0.0;
    for (std::size_t i = 0; i < n; ++i)
        sum += y[i];
    const double mean = sum / count;

    double residualSum = 0.0;
    double varianceSum = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        residualSum += (y[i] - mean) * (y[i] - mean);
        varianceSum += v[i];
    }
    return std::max(0.0, residualSum / (count - 1.0) - varianceSum / count);
}

/// Scoring step: Viechtbauer (2005), Journal of Educational and Behavioral Statistics 30, 261-293.
double RemlStep(const double* y, const double* v, std::size_t n, double tau2)
{
    const WeightedMean pooled = Pool(y, v, n, tau2);
    double traceP = 0.0;
    double tracePP = 0.0;
    double squaredWeightSum = 0.0;
    double residualSum = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        const double weight = 1.0 / (tau2 + v[i]);
        const double leverage = weight / pooled.weightSum;
        const double weightedResidual = weight * (y[i] - pooled.mean);
        traceP += (1.0 - leverage) * weight;
        tracePP += (1.0 - 2.0 * leverage) * weight * weight;
        squaredWeightSum += weight * weight;
        residualSum += weightedResidual * weightedResidual;
    }
    const double ratio = squaredWeightSum / pooled.weightSum;
    return (residualSum - traceP) / (tracePP + ratio * ratio);
}

/// Scoring from `start`, with `stepAt(tau2)`.
template <class StepAt>
double IterateTau2(double start, StepAt stepAt)
{
    double tau2 = start;
    for (int iteration = 0; iteration < maxIterations; ++iteration) {
        const double step = stepAt(tau2);
        if (std::abs(step) < convergenceTolerance)
            break;
        tau2 += step;
    }
    return tau2;
}

double RemlTau2(const double* y, const double* v, std::size_t n)
{
    return IterateTau2(HedgesTau2(y, v, n), [&](double tau2) { return RemlStep(y, v, n, tau2); });
}

double HomogeneityQ(const double* y, const double* v, std::size_t n)
{
    const double mean = Pool(y, v, n, 0.0).mean;
    double q = 0.0;
    for (std::size_t i = 0; i < n; ++i)
        q += (y[i] - mean) * (y[i] - mean) / v[i];
    return q;
}

using Square = std::array<std::array<double, predictorCount>, predictorCount>;

struct CrossProducts
{
    Square xx{};
    std::array<double, predictorCount> xy{};

    void Add(const DesignRow& row, double weight)
    {
        for (std::size_t r = 0; r < predictorCount; ++r) {
            const double weighted = weight * row[r];
            for (std::size_t c = 0; c <= r; ++c)
                xx[r][c] += weighted * row[c];
            xy[r] += weighted * row[predictorCount];
        }
    }
};

/// Completes a lower triangle.
Square Symmetric(Square lower)
{
    for (std::size_t r = 0; r < predictorCount; ++r) {
        for (std::size_t c = r + 1; c < predictorCount; ++c)
            lower[r][c] = lower[c][r];
    }
    return lower;
}

/// The inverse of a positive definite matrix, by Gauss-Jordan elimination.
Square Inverse(Square a)
{
    for (std::size_t k = 0; k < predictorCount; ++k) {
        const double pivot = a[k][k];
        a[k][k] = 1.0;
        for (double& element : a[k])
            element /= pivot;
        for (std::size_t r = 0; r < predictorCount; ++r) {
            if (r == k)
                continue;
            const double factor = a[r][k];
            a[r][k] = 0.0;
            for (std::size_t c = 0; c < predictorCount; ++c)
                a[r][c] -= factor * a[k][c];
        }
    }
    return a;
}

Square Product(const Square& a, const Square& b)
{
    Square product{};
    for (std::size_t r = 0; r < predictorCount; ++r) {
        for (std::size_t k = 0; k < predictorCount; ++k) {
            for (std::size_t c = 0; c < predictorCount; ++c)
                product[r][c] += a[r][k] * b[k][c];
        }
    }
    return product;
}

double Trace(const Square& a)
{
    double trace = 0.0;
    for (std::size_t r = 0; r < predictorCount; ++r)
        trace += a[r][r];
    return trace;
}

/// Weighted least squares.
struct LeastSquares
{
    Square inverse; ///< of X'WX
    std::array<double, predictorCount> coefficients{};

    explicit LeastSquares(const CrossProducts& products) : inverse(Inverse(Symmetric(products.xx)))
    {
        for (std::size_t r = 0; r < predictorCount; ++r) {
            for (std::size_t c = 0; c < predictorCount; ++c)
                coefficients[r] += inverse[r][c] * products.xy[c];
        }
    }
    double Residual(const DesignRow& row) const
    {
        double residual = row[predictorCount];
        for (std::size_t r = 0; r < predictorCount; ++r)
            residual -= row[r] * coefficients[r];
        return residual;
    }
    /// x' (X'WX)⁻¹ x.
    double Form(const DesignRow& row) const
    {
        double form = 0.0;
        for (std::size_t r = 0; r < predictorCount; ++r) {
            double below = 0.0;
            for (std::size_t c = 0; c < r; ++c)
                below += inverse[r][c] * row[c];
            form += row[r] * (2.0 * below + inverse[r][r] * row[r]);
        }
        return form;
    }
};

template <class WeightOf>
LeastSquares FitRows(const std::vector<DesignRow>& rows, WeightOf weightOf)
{
    CrossProducts products;
    for (std::size_t i = 0; i < rows.size(); ++i)
        products.Add(rows[i], weightOf(i));
    return LeastSquares(products);
}

double ResidualDf(const std::vector<DesignRow>& rows)
{
    return static_cast<double>(rows.size() - predictorCount);
}

/// tau² from the residuals of an unweighted fit.
double HedgesTau2(const std::vector<DesignRow>& rows, const std::vector<double>& v)
{
    const LeastSquares fit = FitRows(rows, [](std::size_t) { return 1.0; });
    double sum = 0.0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const double residual = fit.Residual(rows[i]);
        sum += residual * residual - (1.0 - fit.Form(rows[i])) * v[i];
    }
    return std::max(0.0, sum / ResidualDf(rows));
}

double RemlStep(const std::vector<DesignRow>& rows, const std::vector<double>& v, double tau2)
{
    CrossProducts products;
    CrossProducts squared;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const double weight = 1.0 / (v[i] + tau2);
        products.Add(rows[i], weight);
        squared.Add(rows[i], weight * weight);
    }
    const LeastSquares fit(products);
    double traceP = 0.0;
    double tracePP = 0.0;
    double residualSum = 0.0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const double weight = 1.0 / (v[i] + tau2);
        const double leverage = weight * fit.Form(rows[i]);
        const double weightedResidual = weight * fit.Residual(rows[i]);
        traceP += (1.0 - leverage) * weight;
        tracePP += (1.0 - 2.0 * leverage) * weight * weight;
        residualSum += weightedResidual * weightedResidual;
    }
    const Square hat = Product(fit.inverse, Symmetric(squared.xx));
    return (residualSum - traceP) / (tracePP + Trace(Product(hat, hat)));
}

double Tau2WithoutPredictors(const std::vector<DesignRow>& rows, const std::vector<double>& v)
{
    std::vector<double> y(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i)
        y[i] = rows[i][predictorCount];
    return RemlTau2(y.data(), v.data(), y.size());
}

void MeasureHeterogeneity(const std::vector<DesignRow>& rows, const std::vector<double>& v,
                          RegressionFit& result)
{
    const LeastSquares fit = FitRows(rows, [&](std::size_t i) { return 1.0 / v[i]; });
    double trace = 0.0;
    result.residualQ = 0.0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const double weight = 1.0 / v[i];
        const double residual = fit.Residual(rows[i]);
        result.residualQ += weight * residual * residual;
        trace += weight * (1.0 - weight * fit.Form(rows[i]));
    }
    const double typicalVariance = ResidualDf(rows) / trace;
    result.i2 = result.tau2 / (result.tau2 + typicalVariance);
    result.h2 = (result.tau2 + typicalVariance) / typicalVariance;
}

} // namespace

Fit FitReml(const double* y, const double* v, std::size_t n)
{
    const double tau2 = RemlTau2(y, v, n);
    return {tau2, Pool(y, v, n, tau2).mean, HomogeneityQ(y, v, n)};
}

/// Adds up `fit(first effect, first variance)` of each set.
template <class FitSet>
Fit SumOverSets(const std::vector<double>& y, const std::vector<double>& v, std::size_t n, FitSet fit)
{
    Fit sum{};
    for (std::size_t first = 0; first < y.size(); first += n) {
        const Fit ofSet = fit(&y[first], &v[first]);
        sum = {sum.tau2 + ofSet.tau2, sum.mean + ofSet.mean, sum.q + ofSet.q};
    }
    return sum;
}

Fit PoolSetsFixed(const std::vector<double>& y, const std::vector<double>& v, std::size_t n)
{
    return SumOverSets(y, v, n, [=](const double* effects, const double* variances) {
        return Fit{0.0, Pool(effects, variances, n, 0.0).mean, 0.0};
    });
}

/// DerSimonian and Laird (1986), Controlled Clinical Trials 7, 177-188.
Fit PoolSetsMoment(const std::vector<double>& y, const std::vector<double>& v, std::size_t n)
{
    return SumOverSets(y, v, n, [=](const double* effects, const double* variances) {
        double weightSum = 0.0;
        double squareSum = 0.0;
        for (std::size_t i = 0; i < n; ++i) {
            const double weight = 1.0 / variances[i];
            weightSum += weight;
            squareSum += weight * weight;
        }
        const double q = HomogeneityQ(effects, variances, n);
        const double trace = weightSum - squareSum / weightSum;
        const double tau2 = std::max(0.0, (q - (static_cast<double>(n) - 1.0)) / trace);
        return Fit{tau2, Pool(effects, variances, n, tau2).mean, 0.0};
    });
}

Fit PoolSetsReml(const std::vector<double>& y, const std::vector<double>& v, std::size_t n)
{
    return SumOverSets(y, v, n, [=](const double* effects, const double* variances) {
        return FitReml(effects, variances, n);
    });
}

std::vector<StudyRow> DescribeStudies(const double* y, const double* v, std::size_t n, double tau2)
{
    std::vector<StudyRow> rows(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double stdError = std::sqrt(v[i]);
        const double z = y[i] / stdError;
        const double lower = y[i] - normalQuantile * stdError;
        const double upper = y[i] + normalQuantile * stdError;
        rows[i] = {stdError,
                   z,
                   Significance(z),
                   lower,
                   upper,
                   {std::exp(y[i]), std::exp(v[i]), std::exp(stdError), std::exp(lower), std::exp(upper)},
                   1.0 / (tau2 + v[i]),
                   1.0 / stdError,
                   z};
    }
    return rows;
}

Analysis AnalyseEffects(const double* y, const double* v, std::size_t n)
{
    const Fit fit = FitReml(y, v, n);
    return {fit, DescribeStudies(y, v, n, fit.tau2)};
}

Analysis AnalyseTables(const std::vector<Table>& tables)
{
    std::vector<double> y(tables.size());
    std::vector<double> v(tables.size());
    for (std::size_t i = 0; i < tables.size(); ++i) {
        const auto& [a, b, c, d] = tables[i];
        y[i] = std::log(a) - std::log(b) - (std::log(c) - std::log(d));
        v[i] = 1.0 / a + 1.0 / b + 1.0 / c + 1.0 / d;
    }
    return AnalyseEffects(y.data(), v.data(), y.size());
}

std::vector<ModelRow> PoolPrefixes(const std::vector<double>& y, const std::vector<double>& v,
                                   const std::vector<double>& order)
{
    std::vector<std::size_t> position(y.size());
    std::iota(position.begin(), position.end(), std::size_t{0});
    std::stable_sort(position.begin(), position.end(),
                     [&](std::size_t left, std::size_t right) { return order[left] < order[right]; });
    std::vector<ModelRow> rows(y.size());
    double weightSum = 0.0;
    double weightedSum = 0.0;
    for (std::size_t i = 0; i < y.size(); ++i) {
        const double weight = 1.0 / v[position[i]];
        weightSum += weight;
        weightedSum += weight * y[position[i]];
        const double mean = weightedSum / weightSum;
        const double variance = 1.0 / weightSum;
        const double stdError = std::sqrt(variance);
        const double z = mean / stdError;
        rows[i] = {mean,
                   variance,
                   stdError,
                   z,
                   Significance(z),
                   mean - normalQuantile * stdError,
                   mean + normalQuantile * stdError};
    }
    return rows;
}

RegressionFit FitRemlRegression(const std::vector<DesignRow>& rows, const std::vector<double>& v)
{
    RegressionFit result{};
    result.tau2 = IterateTau2(HedgesTau2(rows, v), [&](double tau2) { return RemlStep(rows, v, tau2); });
    const LeastSquares fit = FitRows(rows, [&](std::size_t i) { return 1.0 / (v[i] + result.tau2); });
    result.coefficients = fit.coefficients;
    for (std::size_t r = 0; r < predictorCount; ++r)
        result.stdErrors[r] = std::sqrt(fit.inverse[r][r]);
    MeasureHeterogeneity(rows, v, result);
    result.rSquare = std::max(0.0, 1.0 - result.tau2 / Tau2WithoutPredictors(rows, v));
    return result;
}

} // namespace bare
