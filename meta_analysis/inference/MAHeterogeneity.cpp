#include "meta_analysis/inference/MAHeterogeneity.h"

#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/platform/common/KXMV.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

/// Not a number for k = 2 with Q <= 2. The count is a double so that its differences can be negative and
/// its quotients infinite.
double StdErrorOfLogH(double q, double k)
{
    if (q > k)
        return 0.5 * (std::log(q) - std::log(k - 1.0)) / (std::sqrt(2.0 * q) - std::sqrt(2.0 * k - 3.0));
    return std::sqrt((1.0 - 1.0 / (3.0 * (k - 2.0) * (k - 2.0))) / (2.0 * (k - 2.0)));
}

double I2FromH2(double h2)
{
    const double i2 = 1.0 - 1.0 / h2;
    return i2 > 0.0 ? i2 : 0.0;
}

} // namespace

MAHeterogeneityMeasures HeterogeneityFromQ(double q, double df)
{
    MAHeterogeneityMeasures measures;
    measures.h2 = q / df;
    if (!std::isnan(q)) // of a pooled effect that is not defined
        measures.i2 = q > df ? (q - df) / q : 0.0;
    return measures;
}

MAHeterogeneityMeasures HeterogeneityFromTau2(double tau2, double typicalVariance)
{
    const double total = typicalVariance + tau2;
    MAHeterogeneityMeasures measures;
    measures.h2 = total / typicalVariance;
    measures.i2 = tau2 / total;
    return measures;
}

MAHeterogeneityMeasures MeasureHeterogeneity(double q, std::size_t k, double quantile)
{
    MAHeterogeneityMeasures measures = HeterogeneityFromQ(q, static_cast<double>(k) - 1.0);
    const double stdError = StdErrorOfLogH(q, static_cast<double>(k));
    if (!std::isfinite(stdError))
        return measures;
    // As factors and not through log H, so that H² lies between its bounds whatever the rounding; I², which
    // is not computed from H², is kept there.
    const double factor = std::exp(quantile * stdError);
    measures.h2Lower = measures.h2 / factor / factor;
    measures.h2Upper = measures.h2 * factor * factor;
    measures.i2Lower = std::min(I2FromH2(measures.h2Lower), measures.i2);
    measures.i2Upper = std::max(I2FromH2(measures.h2Upper), measures.i2);
    return measures;
}

MAPValue HomogeneityPValue(double q, int df)
{
    return std::isfinite(q) ? ChiSquarePValue(q, df) : MAPValue();
}

} // namespace MA_NAMESPACE
