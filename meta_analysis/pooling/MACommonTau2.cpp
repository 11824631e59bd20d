#include "meta_analysis/pooling/MACommonTau2.h"

#include "meta_analysis/inference/MAWeightedMean.h"
#include "meta_analysis/platform/common/Square.h"
#include "meta_analysis/pooling/MAGroupedCurve.h"
#include "meta_analysis/pooling/MAPooling.h"
#include "meta_analysis/pooling/MATau2Estimators.h"
#include "meta_analysis/pooling/MATau2Inference.h"
#include "meta_analysis/pooling/MATau2Outcome.h"
#include "meta_analysis/pooling/MATau2Search.h"
#include "meta_analysis/pooling/MATau2Steps.h"

#include <cmath>

namespace MA_NAMESPACE {

namespace {

using Groups = std::span<const MAEffects>;

template <class Term>
double SumOver(Groups groups, Term term)
{
    double sum = 0.0;
    for (const MAEffects& group : groups)
        sum += term(group);
    return sum;
}

double StudyCount(Groups groups)
{
    return SumOver(groups, [](const MAEffects& group) { return static_cast<double>(group.Count()); });
}

double ResidualDf(Groups groups)
{
    return StudyCount(groups) - static_cast<double>(groups.size());
}

double PlainMean(Groups groups)
{
    const double sum = SumOver(groups, [](const MAEffects& group) {
        double effects = 0.0;
        for (const double effect : group.effectSizes)
            effects += effect;
        return effects;
    });
    return sum / StudyCount(groups);
}

/// Sum of squares about a mean, without weights.
double SquaresAbout(const MAEffects& group, double mean)
{
    double sum = 0.0;
    for (const double effect : group.effectSizes)
        sum += Square(effect - mean);
    return sum;
}

/// The sum of the products of all pairs of weights 1 / v over their sum, of each group; see `PairSum`.
double PairSums(Groups groups)
{
    return SumOver(groups,
                   [](const MAEffects& group) { return PairSum(group, WeightedMean(group, 0.0).weightSum); });
}

/// Sum of Cochran's Q of the groups.
double WithinQ(Groups groups)
{
    return SumOver(groups,
                   [](const MAEffects& group) { return CochranQ(group, WeightedMean(group, 0.0).Mean()); });
}

/// From the plain means of the groups, of which a study of n has the leverage 1 / n.
double HedgesTau2(Groups groups)
{
    const double sum = SumOver(groups, [](const MAEffects& group) {
        double variances = 0.0;
        for (const double variance : group.variances)
            variances += variance;
        return SquaresAbout(group, PlainMean({&group, 1})) -
               variances * (1.0 - 1.0 / static_cast<double>(group.Count()));
    });
    return TruncateAtZero(sum / ResidualDf(groups));
}

double HunterSchmidtTau2(Groups groups)
{
    const double weights =
        SumOver(groups, [](const MAEffects& group) { return WeightedMean(group, 0.0).weightSum; });
    return (WithinQ(groups) - StudyCount(groups)) / weights;
}

double DerSimonianLairdTau2(Groups groups)
{
    const double pairs = PairSums(groups);
    return pairs == 0.0 ? 0.0 : (WithinQ(groups) - ResidualDf(groups)) / pairs;
}

/// From the crude variance of all effects about one mean, without regard to the groups, as in a regression.
double SidikJonkmanTau2(Groups groups)
{
    const double mean = PlainMean(groups);
    const double crude = SumOver(groups, [=](const MAEffects& group) { return SquaresAbout(group, mean); }) /
                         StudyCount(groups);
    if (crude == 0.0 || std::isinf(crude)) // whose weights are no numbers
        return crude;
    const double q = SumOver(groups, [=](const MAEffects& group) {
        return ResidualSum(group, WeightedMean(group, crude, crude).Mean(), crude);
    });
    return crude * q / ResidualDf(groups);
}

MATau2Estimate Score(Groups groups, const MATau2Choice& choice)
{
    return ScoreTau2(HedgesTau2(groups), choice, static_cast<double>(groups.size()), [&](double tau2) {
        MATau2StepSums sums;
        for (const MAEffects& group : groups)
            sums.Add(StepSumsAt(group, tau2));
        return sums;
    });
}

/// The Hedges estimate where the search has none.
MATau2Estimate Search(Groups groups, const MATau2Choice& choice)
{
    MAGroupedCurve curve(groups, choice.estimator);
    const double start = HedgesTau2(groups);
    MATau2Estimate estimate =
        EstimateOf(SolveTau2(curve, choice.estimator, start / curve.Unit()), curve.Unit());
    if (estimate.convergence == MAConst::TAU2_STEP_NOT_FINITE)
        estimate.tau2 = start;
    return estimate;
}

/// What goes with tau², the same for all groups.
MATau2Results ResultsOf(Groups groups, const MARandomEffectsChoice& choice, const MATau2Estimate& estimate)
{
    MATau2Results results;
    results.convergence = estimate.convergence;
    results.evaluations = estimate.evaluations;
    if (!(ResidualDf(groups) > 0.0))
        return results;
    MAGroupedCurve curve(groups, choice.estimator);
    MAQuantiles quantiles(choice.alpha);
    InferTau2(curve, estimate.tau2, {choice.estimator, choice.tau2Interval, static_cast<int>(groups.size())},
              quantiles, results);
    results.isDoubtful =
        choice.checksTau2 && IsTau2Doubtful(curve, choice.estimator, estimate.tau2, estimate.convergence,
                                            [&] { return ResidualDf(groups) / PairSums(groups); });
    return results;
}

} // namespace

MATau2Estimate EstimateCommonTau2(std::span<const MAEffects> groups, const MATau2Choice& choice)
{
    if (IsEstimator(choice.estimator) && !(ResidualDf(groups) > 0.0))
        return ClosedFormTau2(0.0);
    switch (choice.estimator) {
    case MAConst::TAU2_HE:
        return ClosedFormTau2(HedgesTau2(groups));
    case MAConst::TAU2_HS:
        return ClosedFormTau2(HunterSchmidtTau2(groups));
    case MAConst::TAU2_DL:
        return ClosedFormTau2(DerSimonianLairdTau2(groups));
    case MAConst::TAU2_SJ:
        return ClosedFormTau2(SidikJonkmanTau2(groups));
    case MAConst::TAU2_ML:
    case MAConst::TAU2_REML:
    case MAConst::TAU2_EB:
        return choice.search == MAConst::TAU2_SEARCH_GLOBAL ? Search(groups, choice) : Score(groups, choice);
    }
    return FailedTau2(KXStatus(MAStatusCode::TAU2_FAILED));
}

std::vector<MAPooledModel> PoolWithCommonTau2(std::span<const MAEffects> groups,
                                              const MARandomEffectsChoice& choice)
{
    const MATau2Estimate estimate =
        EstimateCommonTau2(groups, {choice.estimator, choice.limits, choice.search});
    if (estimate.status.IsError()) {
        MAPooledModel failed;
        failed.status = estimate.status;
        return {failed};
    }
    const MATau2Results results = ResultsOf(groups, choice, estimate);
    const MAMeanTest test = TestOfMeans(groups, choice.knappHartung, estimate.tau2);
    std::vector<MAPooledModel> models;
    models.reserve(groups.size());
    for (const MAEffects& group : groups) {
        models.push_back(PoolAtTau2(group, choice, estimate.tau2, test));
        models.back().tau2Results = results;
        BoundHeterogeneity(models.back());
    }
    return models;
}

} // namespace MA_NAMESPACE
