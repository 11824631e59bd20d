#include "meta_analysis/regression/MARegHeterogeneity.h"

#include "meta_analysis/inference/MAHeterogeneity.h"
#include "meta_analysis/inference/MAKnappHartung.h"
#include "meta_analysis/inference/MATestPValues.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

/// A variance below this part of the mean within-study variance counts as zero: squared rounding errors leave
/// less.
constexpr double negligible = 1e-12;

/// A smaller residual Q counts as none: the fit is exact. Otherwise Q is of the order of its degrees of
/// freedom.
constexpr double negligibleQ = 1e-12;

} // namespace

double KnappHartungScale(const MARegFit& fit, bool truncated)
{
    const int df = fit.ResidualDf();
    if (df == 0)
        return truncated ? 1.0 : KXMV::Missing();
    return KnappHartungFactor(fit.WeightedResidualSum(), df, truncated);
}

double TypicalVariance(MARegressionCurve& curve, double meanVariance)
{
    const double trace = curve.SumsAt(0.0, true).traceP / curve.Unit();
    return trace * meanVariance >= negligible ? curve.Bounds().residualDf / trace : 0.0;
}

MAResidualHeterogeneity ResidualHeterogeneity(double tau2, MARegressionCurve& curve, double meanVariance)
{
    MAResidualHeterogeneity residual;
    residual.q = curve.SumsAt(0.0, true).yPy;
    residual.df = static_cast<int>(curve.Bounds().residualDf);
    if (residual.df != 0)
        residual.qPValue = ChiSquarePValue(residual.q, residual.df);
    const double least = negligible * meanVariance;
    const double typicalVariance = TypicalVariance(curve, meanVariance);
    const MAHeterogeneityMeasures measures = HeterogeneityFromTau2(tau2, typicalVariance);
    residual.i2 = tau2 + typicalVariance < least ? 0.0 : measures.i2;
    residual.h2 = typicalVariance < least ? 0.0 : measures.h2;
    return residual;
}

MAResidualHeterogeneity ResidualHeterogeneity(const MARegFit& fit)
{
    MAResidualHeterogeneity residual;
    residual.q = fit.WeightedResidualSum();
    residual.df = fit.ResidualDf();
    residual.h2 = 1.0;
    residual.i2 = 0.0;
    if (residual.df == 0)
        return residual;
    residual.qPValue = ChiSquarePValue(residual.q, residual.df);
    if (std::abs(residual.q) >= negligibleQ) {
        const MAHeterogeneityMeasures measures = HeterogeneityFromQ(residual.q, residual.df);
        residual.h2 = measures.h2;
        residual.i2 = measures.i2;
    }
    return residual;
}

double ExplainedPart(double tau2, const MATau2Estimate& without, double meanVariance)
{
    if (without.status.IsError() || !(without.tau2 >= negligible * meanVariance))
        return 0.0;
    return std::max(0.0, (without.tau2 - tau2) / without.tau2);
}

} // namespace MA_NAMESPACE
