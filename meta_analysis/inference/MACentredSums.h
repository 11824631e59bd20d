#pragma once

#include "meta_analysis/platform/common/Cancellation.h"
#include "meta_analysis/platform/common/Square.h"

namespace MA_NAMESPACE {

/// Weighted sums of effects about their own mean, which are joined without a difference of large numbers
/// (Chan, Golub and LeVeque 1983, The American Statistician 37, 242-247). The effects are counted from an
/// origin that is near them.
struct MACentredSums
{
    void Add(double weight, double effect) { Add({weight, effect, 0.0}); }
    void Add(const MACentredSums& others)
    {
        const double all = weightSum + others.weightSum;
        const double share = all > 0.0 ? others.weightSum / all : 0.0;
        const double distance = others.mean - mean;
        squares += others.squares + distance * distance * (weightSum * share);
        mean += distance * share;
        weightSum = all;
    }
    /// sum(w (e - centre)²)
    double SquaresAbout(double centre) const { return squares + weightSum * Square(mean - centre); }
    /// False where the origin is far from the effects, relative to their distances from each other, and where
    /// a sum is not finite.
    bool AreExact() const { return Keeps(squares, SquaresAbout(0.0)); }

    double weightSum = 0.0;
    double mean = 0.0;
    double squares = 0.0; ///< sum(w (e - mean)²)
};

} // namespace MA_NAMESPACE
