#pragma once

#include "meta_analysis/inference/MAEffects.h"

#include <array>
#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// Sums over studies with weights w = 1 / (v + t), of which each array has the powers w, w², w³.
struct MAPrefixMoments
{
    static constexpr std::size_t powers = 3;

    std::array<double, powers> weights; ///< sum(wⁿ)
    std::array<double, powers> effects; ///< sum(wⁿ e)
    std::array<double, powers> squares; ///< sum(wⁿ e²)
};

/// The moments of the first 1, 2, ... studies as functions of t >= 0, with effects counted from the mean of
/// all studies, in a unit that makes the least variance 1 to 4.
///
/// Near a centre c the sums have the power series of `MADeletionSums`. A study that joins is added to those
/// of a few centres: one more study moves each step of an iteration little, so that most evaluations are near
/// a centre and cost O(1). One that is not makes a centre in O(k).
class MAPrefixSums
{
public:
    /// Refers to the studies.
    explicit MAPrefixSums(const MAEffects& studies);

    /// The next study joins.
    void Append();
    /// At t in the unit.
    MAPrefixMoments At(double t);

    std::size_t Count() const { return count_; }
    double Unit() const { return unit_; }     ///< of variances, a power of 4
    double Origin() const { return origin_; } ///< of effects, in the units of the data
    /// Effect and variance of a study, in the unit.
    double Effect(std::size_t study) const;
    double Variance(std::size_t study) const { return studies_.variances[study] / unit_; }

private:
    static constexpr std::size_t terms = 12;
    static constexpr std::size_t mostCentres = 32; ///< an iteration or a search looks at fewer t that matter

    struct Centre
    {
        double at;
        double reach;
        std::size_t lastUse;
        std::array<std::array<double, 3>, terms> series; ///< weights, effects, squares of each power
    };

    void Add(std::size_t study, Centre& centre) const;
    Centre& CentreFor(double t);
    Centre& NewCentre(double t);

    MAEffects studies_;
    double unit_;
    double rootOfUnit_;
    double origin_;
    double leastVariance_;
    std::size_t count_ = 0;
    std::size_t uses_ = 0;
    std::vector<Centre> centres_;
};

} // namespace MA_NAMESPACE
