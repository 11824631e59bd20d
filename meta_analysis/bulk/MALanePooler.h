#pragma once

#include "meta_analysis/bulk/MAGatheredSet.h"
#include "meta_analysis/bulk/lanes/MALaneKernels.h"
#include "meta_analysis/bulk/lanes/MALaneSearches.h"
#include "meta_analysis/inference/MAQuantiles.h"
#include "meta_analysis/pooling/MAPooledCurve.h"
#include "meta_analysis/pooling/MAPooledCurveSums.h"
#include "meta_analysis/pooling/MAPooledModel.h"
#include "meta_analysis/pooling/MAPoolingChoice.h"
#include "meta_analysis/pooling/MATau2Interval.h"
#include "meta_analysis/pooling/MATau2Search.h"
#include "meta_analysis/pooling/MAWantedResults.h"

#include <array>
#include <optional>
#include <span>
#include <vector>

namespace MA_NAMESPACE {

/// Pools several small sets side by side, with the bits of `PoolFixedEffect` and `PoolRandomEffects`: sums
/// and curves in vector registers, what is left of a model set by set. It leaves a set to those where they
/// take another path, and where a number is not finite.
class MALanePooler
{
public:
    /// The most studies of a set: within one block the sums of a curve have no blocks.
    static constexpr std::size_t mostStudies = curveBlockSize;

    /// Whether these results of the choice can be had in lanes.
    static bool Takes(const MAFixedEffectChoice& choice, const MAWantedResults& wanted);
    static bool Takes(const MARandomEffectsChoice& choice, const MAWantedResults& wanted);

    explicit MALanePooler(const MALaneKernels& kernels);

    /// Loads sets of at most `mostStudies` studies, at most one for each lane.
    void Load(std::span<const MAGatheredSet> sets);
    /// The models of the sets; none of a set that is left.
    using Models = std::array<std::optional<MAPooledModel>, mostLanes>;
    const Models& Pool(const MAFixedEffectChoice& choice, const MAWantedResults& wanted,
                       MAQuantiles& quantiles);
    const Models& Pool(const MARandomEffectsChoice& choice, const MAWantedResults& wanted,
                       MAQuantiles& quantiles);

private:
    MALaneStudies Studies() const { return {effects_, variances_, count_}; }
    MALaneCurves Curves() const;
    template <class Value>
    void ForEachPooled(Value value);
    void MakeCurves(const MARandomEffectsChoice& choice);
    void EstimateTau2(const MARandomEffectsChoice& choice);
    void SearchMaxima(MALikelihoodType type);
    void SearchRoots();
    void FindIntervals(MAQuantiles& quantiles);
    template <class Search>
    void RunQSearches(std::span<std::optional<Search>> searches);
    bool IsFinite(std::size_t lane) const;
    void LeaveWhatIsNotFinite();

    const MALaneKernels& kernels_;
    std::span<const MAGatheredSet> sets_;
    std::size_t count_ = 0; ///< studies of the longest set
    std::vector<double> memory_;
    double* effects_;
    double* variances_;
    double* distances_;      ///< of effects from that of the reference study
    double* otherVariances_; ///< infinite for the reference study

    std::array<bool, mostLanes> isLeft_{};
    MALaneValues counts_{};
    MALaneValues tau2_{};
    MALaneValues mean_{};
    MALaneValues weightSum_{};
    MALaneValues residualSum_{};
    MALaneValues q_{};
    MALaneValues fixedWeightSum_{};
    MALaneValues fixedTrace_{};
    MALaneValues unit_{};
    MALaneValues minVariance_{};
    std::array<MATau2Estimate, mostLanes> estimates_;
    std::array<MATau2Bounds, mostLanes> bounds_{};
    std::array<std::optional<MAPooledCurve>, mostLanes> curves_;
    /// A member, because each has room for more nodes than a search ever takes: to make them costs a search.
    std::array<std::optional<MASoleMaximumSearch>, mostLanes> maxima_;
    Models models_;
};

} // namespace MA_NAMESPACE
