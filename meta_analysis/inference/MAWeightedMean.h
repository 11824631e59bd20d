#pragma once

#include "meta_analysis/inference/MAEffects.h"

#include <cstddef>
#include <type_traits>
#include <utility>

namespace MA_NAMESPACE {

// The sums are templates of the studies: those of one set, whose numbers are doubles, or of several sets side
// by side, whose numbers are vectors of doubles. Each entry of a vector goes through the same operations in
// the same order as the double, and comes to the same bits.

/// The number that studies are made of.
template <class Effects>
using MANumberOf = std::remove_cvref_t<decltype(std::declval<const Effects&>().effectSizes[0])>;

/// Running sums of a weighted mean, sum(w y) / sum(w). With weights w = 1 / variance, its variance is
/// 1 / sum(w).
template <class Number>
struct MAWeightedMeanOf
{
    Number weightSum{};
    Number weightedSum{};

    void Add(const Number& weight, const Number& effectSize)
    {
        weightSum += weight;
        weightedSum += weight * effectSize;
    }
    Number Mean() const { return weightedSum / weightSum; }
    Number Variance() const { return 1.0 / weightSum; }
};
using MAWeightedMean = MAWeightedMeanOf<double>;

/// The sums with weights `scale` / (v + tau²).
template <class Effects>
MAWeightedMeanOf<MANumberOf<Effects>> WeightedMean(const Effects& studies, const MANumberOf<Effects>& tau2,
                                                   double scale = 1.0)
{
    MAWeightedMeanOf<MANumberOf<Effects>> sums;
    for (std::size_t i = 0; i < studies.Count(); ++i)
        sums.Add(scale / (tau2 + studies.variances[i]), studies.effectSizes[i]);
    return sums;
}

/// The generalized Q statistic, sum((y - mean)² / (v + tau²)): Cochran's Q for tau² = 0.
template <class Effects>
MANumberOf<Effects> ResidualSum(const Effects& studies, const MANumberOf<Effects>& mean,
                                const MANumberOf<Effects>& tau2)
{
    MANumberOf<Effects> sum{};
    for (std::size_t i = 0; i < studies.Count(); ++i) {
        const MANumberOf<Effects> residual = studies.effectSizes[i] - mean;
        sum += residual * residual / (tau2 + studies.variances[i]);
    }
    return sum;
}

/// Cochran's Q as a sum of w (y - mean)², w = 1 / v.
template <class Effects>
MANumberOf<Effects> CochranQ(const Effects& studies, const MANumberOf<Effects>& mean)
{
    MANumberOf<Effects> q{};
    for (std::size_t i = 0; i < studies.Count(); ++i) {
        const MANumberOf<Effects> residual = studies.effectSizes[i] - mean;
        q += residual * residual * (1.0 / studies.variances[i]);
    }
    return q;
}

/// sum(w) - sum(w²) / sum(w) with w = 1 / v and the given sum(w), as twice the sum of the products of all
/// pairs of weights over their sum: the difference would cancel when one weight dominates. As products with
/// shares of the sum they neither overflow nor vanish in any unit.
template <class Effects>
MANumberOf<Effects> PairSum(const Effects& studies, const MANumberOf<Effects>& weightSum)
{
    const MANumberOf<Effects> inverseSum = 1.0 / weightSum;
    MANumberOf<Effects> share{}; // of the weights so far
    MANumberOf<Effects> pairs{};
    for (std::size_t i = 0; i < studies.Count(); ++i) {
        const MANumberOf<Effects> weight = 1.0 / studies.variances[i];
        pairs += weight * share;
        share += weight * inverseSum;
    }
    return 2.0 * pairs;
}

} // namespace MA_NAMESPACE
