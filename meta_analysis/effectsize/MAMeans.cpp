#include "meta_analysis/effectsize/MAMeans.h"

#include <cmath>
#include <limits>

namespace MA_NAMESPACE {

namespace {

/// Gamma(n + 1/2) / (sqrt(n) Gamma(n)) for large n, by its asymptotic series; the first term left out is
/// below 2e-17 for n >= 100.
double GammaRatioSeries(double n)
{
    const double r = 1.0 / n;
    return 1.0 +
           r * (-1.0 / 8.0 +
                r * (1.0 / 128.0 + r * (5.0 / 1024.0 + r * (-21.0 / 32768.0 + r * (-399.0 / 262144.0 +
                                                                                   r * 869.0 / 4194304.0)))));
}

/// Hedges' correction for small samples, J(m) = Gamma(m/2) / (sqrt(m/2) Gamma((m - 1)/2)), in its exact
/// form (Hedges 1981, Journal of Educational Statistics 6, 107-128). Not by logarithms of gamma functions:
/// their difference loses digits as m grows, six of them at m = 1e6. 0 where there is no correction (m <= 1).
double SmallSampleCorrection(double m)
{
    constexpr double seriesFrom = 201.0; // below it the gamma functions are far from overflow
    if (!(m > 1.0))
        return 0.0;
    if (m >= seriesFrom)
        return std::sqrt((m - 1.0) / m) * GammaRatioSeries((m - 1.0) / 2.0);
    return std::tgamma(m / 2.0) / (std::sqrt(m / 2.0) * std::tgamma((m - 1.0) / 2.0));
}

MAMeansEffect MeanDifference(const MAMeans& study, const MAMeansChoice& choice)
{
    const double variance = choice.equalVariances
                                ? study.PooledVariance() * (1.0 / study.nc + 1.0 / study.nt)
                                : study.st * study.st / study.nt + study.sc * study.sc / study.nc;
    return {study.Difference(), variance};
}

MAMeansEffect CohensD(const MAMeans& study, const MAMeansChoice& choice)
{
    const double d = study.CohensD();
    const double divisor = choice.adjustsVariance ? study.Size() - 2.0 : study.Size();
    return {d, d * d / (2.0 * divisor) + study.NullVariance()};
}

/// Both forms of the variance put g where that of d has d. The adjusted form divides by N - 3.94, the plain
/// one is the variance of d times the squared correction.
MAMeansEffect HedgesG(const MAMeans& study, const MAMeansChoice& choice)
{
    const double correction = SmallSampleCorrection(study.Size() - 2.0);
    const double g = study.CohensD() * correction;
    if (choice.adjustsVariance)
        return {g, g * g / (2.0 * (study.Size() - 3.94)) + study.NullVariance()};
    return {g, correction * correction * (g * g / (2.0 * study.Size()) + study.NullVariance())};
}

MAMeansEffect GlassDelta(const MAMeans& study, const MAMeansChoice& choice)
{
    const bool byTreatment = choice.glassGroup == MAConst::GROUP_TREATMENT;
    const double delta = study.Difference() / (byTreatment ? study.st : study.sc);
    const double divisorSize = byTreatment ? study.nt : study.nc;
    return {delta, study.NullVariance() + delta * delta / (2.0 * (divisorSize - 1.0))};
}

} // namespace

bool IsMeasure(MAConst::CONTESTYPE measure)
{
    return measure >= MAConst::CONT_MEAN_DIFFERENCE && measure <= MAConst::CONT_GLASS_DELTA;
}

MAMeansEffect EffectOf(const MAMeans& study, const MAMeansChoice& choice)
{
    switch (choice.measure) {
    case MAConst::CONT_MEAN_DIFFERENCE:
        return MeanDifference(study, choice);
    case MAConst::CONT_COHENS_D:
        return CohensD(study, choice);
    case MAConst::CONT_HEDGES_G:
        return HedgesG(study, choice);
    case MAConst::CONT_GLASS_DELTA:
        return GlassDelta(study, choice);
    }
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    return {none, none};
}

} // namespace MA_NAMESPACE
