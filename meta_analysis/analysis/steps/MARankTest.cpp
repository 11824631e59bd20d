#include "meta_analysis/analysis/steps/MARankTest.h"

#include "meta_analysis/inference/MAWeightedMean.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace MA_NAMESPACE {

namespace {

/// The deviate of a study that has more than half of all weight. From v - 1 / sum(w) = v sum'(w) / sum(w) and
/// y - m = (y - m') sum'(w) / sum(w), the primed ones of the other studies, for the differences would cancel.
double DeviateOfDominant(const MAEffects& studies, std::size_t dominant)
{
    const double variance = studies.variances[dominant];
    MAWeightedMean others;
    for (std::size_t i = 0; i < studies.Count(); ++i)
        if (i != dominant)
            others.Add(variance / studies.variances[i],
                       studies.effectSizes[dominant] - studies.effectSizes[i]);
    return others.Mean() * std::sqrt(others.weightSum / (1.0 + others.weightSum) / variance);
}

/// A deviation that rounding of the mean explains counts as 0, so that equal effects are tied. All others are
/// a function of effect and variance alone, so that equal studies are tied.
std::vector<double> StandardisedDeviates(const MAEffects& studies)
{
    const double smallest = *std::min_element(studies.variances.begin(), studies.variances.end());
    const double origin = studies.effectSizes.front();
    MAWeightedMean sums;
    double spread = 0.0;
    for (std::size_t i = 0; i < studies.Count(); ++i) {
        sums.Add(smallest / studies.variances[i], studies.effectSizes[i] - origin);
        spread = std::max(spread, std::abs(studies.effectSizes[i] - origin));
    }
    const double rounding =
        spread * std::numeric_limits<double>::epsilon() * (16.0 + static_cast<double>(studies.Count()));
    std::vector<double> deviates;
    deviates.reserve(studies.Count());
    for (std::size_t i = 0; i < studies.Count(); ++i) {
        const double share = smallest / studies.variances[i] / sums.weightSum;
        const double deviation = studies.effectSizes[i] - origin - sums.Mean();
        if (share > 0.5)
            deviates.push_back(DeviateOfDominant(studies, i));
        else
            deviates.push_back(std::isfinite(rounding) && std::abs(deviation) <= rounding
                                   ? 0.0
                                   : deviation / std::sqrt(studies.variances[i] * (1.0 - share)));
    }
    return deviates;
}

} // namespace

MARankCorrelation TestRanks(const MAEffects& studies)
{
    if (studies.Count() < 2)
        return {};
    const std::vector<double> deviates = StandardisedDeviates(studies);
    const bool areFinite =
        std::all_of(deviates.begin(), deviates.end(), [](double deviate) { return std::isfinite(deviate); });
    return areFinite ? CorrelateRanks(deviates, studies.variances) : MARankCorrelation();
}

} // namespace MA_NAMESPACE
