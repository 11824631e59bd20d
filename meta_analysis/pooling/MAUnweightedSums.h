#pragma once

#include "meta_analysis/inference/MACentredSums.h"

namespace MA_NAMESPACE {

/// Sums over studies of which each has the same weight, and the moment estimates of tau² that are made of
/// them, before these are truncated at 0.
struct MAUnweightedSums
{
    void Add(double effect, double variance)
    {
        effects.Add(1.0, effect);
        varianceSum += variance;
    }
    void Add(const MAUnweightedSums& others)
    {
        effects.Add(others.effects);
        varianceSum += others.varianceSum;
    }
    double Count() const { return effects.weightSum; }
    /// sum((y - mean)²) / k, from which the estimate of Sidik and Jonkman starts.
    double CrudeTau2() const { return effects.squares / Count(); }
    /// sum((y - mean)²) / (k - 1) - sum(v) / k
    double HedgesTau2() const { return effects.squares / (Count() - 1.0) - varianceSum / Count(); }

    MACentredSums effects;
    double varianceSum = 0.0;
};

} // namespace MA_NAMESPACE
