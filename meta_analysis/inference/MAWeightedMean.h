#pragma once

#include "meta_analysis/inference/MAEffects.h"

namespace MA_NAMESPACE {

/// Running sums of a weighted mean, sum(w y) / sum(w). With weights w = 1 / variance, its variance is
/// 1 / sum(w).
struct MAWeightedMean
{
    double weightSum = 0.0;
    double weightedSum = 0.0;

    void Add(double weight, double effectSize)
    {
        weightSum += weight;
        weightedSum += weight * effectSize;
    }
    double Mean() const { return weightedSum / weightSum; }
    double Variance() const { return 1.0 / weightSum; }
};

/// The sums with weights `scale` / (v + tau²).
inline MAWeightedMean WeightedMean(const MAEffects& studies, double tau2, double scale = 1.0)
{
    MAWeightedMean sums;
    for (std::size_t i = 0; i < studies.Count(); ++i)
        sums.Add(scale / (tau2 + studies.variances[i]), studies.effectSizes[i]);
    return sums;
}

/// The generalized Q statistic, sum((y - mean)² / (v + tau²)): Cochran's Q for tau² = 0.
inline double ResidualSum(const MAEffects& studies, double mean, double tau2)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < studies.Count(); ++i) {
        const double residual = studies.effectSizes[i] - mean;
        sum += residual * residual / (tau2 + studies.variances[i]);
    }
    return sum;
}

/// Cochran's Q as a sum of w (y - mean)², w = 1 / v.
inline double CochranQ(const MAEffects& studies, double mean)
{
    double q = 0.0;
    for (std::size_t i = 0; i < studies.Count(); ++i) {
        const double residual = studies.effectSizes[i] - mean;
        q += residual * residual * (1.0 / studies.variances[i]);
    }
    return q;
}

/// sum(w) - sum(w²) / sum(w) with w = 1 / v and the given sum(w), as twice the sum of the products of all
/// pairs of weights over their sum: the difference would cancel when one weight dominates. As products with
/// shares of the sum they neither overflow nor vanish in any unit.
inline double PairSum(const MAEffects& studies, double weightSum)
{
    const double inverseSum = 1.0 / weightSum;
    double share = 0.0; // of the weights so far
    double pairs = 0.0;
    for (const double variance : studies.variances) {
        const double weight = 1.0 / variance;
        pairs += weight * share;
        share += weight * inverseSum;
    }
    return 2.0 * pairs;
}

} // namespace MA_NAMESPACE
