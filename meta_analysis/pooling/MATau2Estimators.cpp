// The estimators of the between-study variance without covariates.

#include "meta_analysis/pooling/MATau2Estimators.h"

#include "meta_analysis/inference/MAWeightedMean.h"
#include "meta_analysis/platform/common/Square.h"
#include "meta_analysis/pooling/MAMomentTau2.h"
#include "meta_analysis/pooling/MAPooledCurve.h"
#include "meta_analysis/pooling/MATau2Outcome.h"
#include "meta_analysis/pooling/MATau2Search.h"
#include "meta_analysis/pooling/MATau2Steps.h"

#include <cmath>

namespace MA_NAMESPACE {

namespace {

double MeanOf(std::span<const double> values)
{
    double sum = 0.0;
    for (const double value : values)
        sum += value;
    return values.empty() ? 0.0 : sum / static_cast<double>(values.size());
}

/// Mean of the effect sizes with weights 1 / (v + t), and the sum of these weights. The weights of the mean
/// carry the factor t, which cancels but keeps them of order 1 for any t > 0.
struct ScaledMean
{
    double mean;
    double weightSum;
};

ScaledMean ScaledMeanAt(const MAEffects& studies, double t)
{
    const double factor = t == 0.0 ? 1.0 : t;
    const MAWeightedMean sums = WeightedMean(studies, t, factor);
    return {sums.Mean(), sums.weightSum / factor};
}

/// Truncated at zero, for the iterative estimators start from it. Expectation of the unweighted sum of
/// squares (Hedges 1983, Psychological Bulletin 93, 388-395).
double HedgesTau2(const MAEffects& studies)
{
    if (studies.Count() < 2)
        return 0.0;
    const double mean = MeanOf(studies.effectSizes);
    const auto k = static_cast<double>(studies.Count());
    double residualSum = 0.0;
    double varianceSum = 0.0;
    for (std::size_t i = 0; i < studies.Count(); ++i) {
        residualSum += Square(studies.effectSizes[i] - mean);
        varianceSum += studies.variances[i];
    }
    return TruncateAtZero(residualSum / (k - 1.0) - varianceSum / k);
}

/// One step from the crude variance of the effects (Sidik and Jonkman 2005, Applied Statistics 54, 367-384).
double SidikJonkmanTau2(const MAEffects& studies)
{
    if (studies.Count() == 1)
        return 0.0;
    const auto k = static_cast<double>(studies.Count());
    const double mean = MeanOf(studies.effectSizes);
    double crude = 0.0;
    for (const double y : studies.effectSizes)
        crude += Square(y - mean);
    crude /= k;
    if (std::isinf(crude)) // its weights are no numbers, and a tau² of 0 would pass for an estimate
        return crude;

    const ScaledMean weighted = ScaledMeanAt(studies, crude);
    double sum = 0.0;
    for (std::size_t i = 0; i < studies.Count(); ++i)
        sum += Square(studies.effectSizes[i] - weighted.mean) * (crude / (crude + studies.variances[i]));
    return sum / (k - 1.0);
}

MATau2Estimate Score(const MAEffects& studies, const MATau2Choice& choice)
{
    return ScoreTau2(HedgesTau2(studies), choice, 1.0,
                     [&](double tau2) { return StepSumsAt(studies, tau2); });
}

/// The Hedges estimate where the search has none.
MATau2Estimate Search(const MAEffects& studies, const MATau2Choice& choice, MAPooledCurve& curve)
{
    MATau2Estimate estimate =
        EstimateOf(SolveTau2(curve, choice.estimator, curve.MomentEstimate()), curve.Unit());
    if (estimate.convergence == MAConst::TAU2_STEP_NOT_FINITE)
        estimate.tau2 = HedgesTau2(studies);
    return estimate;
}

} // namespace

/// P = W - W 1 1' W / sum(w) has the diagonal w (sum(w) - w) / sum(w). The traces are taken as sums of
/// positive terms, over the diagonal and over pairs of studies: written with leverages they would cancel
/// where one weight dominates, and for one study leave a quotient of rounding errors in place of 0.
MATau2StepSums StepSumsAt(const MAEffects& studies, double tau2)
{
    const ScaledMean weighted = ScaledMeanAt(studies, tau2);
    const double inverseSum = 1.0 / weighted.weightSum;
    MATau2StepSums sums;
    double pairs = 0.0;
    double squaredPairs = 0.0;
    double squaredDiagonal = 0.0;
    for (std::size_t i = 0; i < studies.Count(); ++i) {
        const double weight = 1.0 / (tau2 + studies.variances[i]);
        pairs += weight * sums.w1;
        squaredPairs += weight * weight * sums.w2;
        squaredDiagonal += Square(weight * (weighted.weightSum - weight) * inverseSum);
        sums.Add(weight, studies.effectSizes[i] - weighted.mean);
    }
    sums.traceP = 2.0 * pairs * inverseSum;
    sums.tracePP = squaredDiagonal + 2.0 * squaredPairs * Square(inverseSum);
    return sums;
}

MATau2Estimate EstimateTau2(const MAEffects& studies, const MATau2Choice& choice)
{
    MACurveOnDemand curve(studies, choice.estimator);
    return EstimateTau2(studies, choice, curve);
}

MATau2Estimate EstimateTau2(const MAEffects& studies, const MATau2Choice& choice, MACurveOnDemand& curve)
{
    if (!studies.HaveEqualLengths())
        return FailedTau2(KXStatus(MAStatusCode::LENGTH_MISMATCH));
    switch (choice.estimator) {
    case MAConst::TAU2_HE:
        return ClosedFormTau2(HedgesTau2(studies));
    case MAConst::TAU2_HS:
        return ClosedFormTau2(HunterSchmidtTau2(studies, static_cast<double>(studies.Count())));
    case MAConst::TAU2_DL:
        return ClosedFormTau2(DerSimonianLairdTau2(studies, static_cast<double>(studies.Count())));
    case MAConst::TAU2_SJ:
        return ClosedFormTau2(SidikJonkmanTau2(studies));
    case MAConst::TAU2_ML:
    case MAConst::TAU2_REML:
    case MAConst::TAU2_EB:
        return choice.search == MAConst::TAU2_SEARCH_GLOBAL ? Search(studies, choice, curve.Get())
                                                            : Score(studies, choice);
    }
    return FailedTau2(KXStatus(MAStatusCode::TAU2_FAILED));
}

} // namespace MA_NAMESPACE
