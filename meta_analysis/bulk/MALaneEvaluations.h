#pragma once

#include "meta_analysis/bulk/MASetRegression.h"
#include "meta_analysis/bulk/lanes/MALaneFits.h"
#include "meta_analysis/bulk/lanes/MALaneKernels.h"
#include "meta_analysis/bulk/lanes/MALaneSearches.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace MA_NAMESPACE {

/// Evaluates the curves of several regressions side by side, at what their searches are going to ask for, and
/// tells the curves. Regressions then find there what they would compute, to the last bit. What is missing
/// there, because a fit takes basic rows or a search goes another way, they compute.
class MALaneEvaluations
{
public:
    explicit MALaneEvaluations(const MALaneFitKernels& kernels) : kernels_(kernels) {}

    /// Of regressions of random effects by one model that have begun, at most one a lane.
    void Evaluate(std::span<MASetRegression* const> regressions);

private:
    struct Request
    {
        bool withTraces;
        bool withCubic;
    };

    bool Load();
    void LoadRows(std::size_t lane);
    void LoadNothing(std::size_t lane);
    void Compute(const MALaneValues& t, const Request& request);
    bool Tell(std::size_t lane, double t, const Request& request);
    void SearchMaxima(MALikelihoodType type);
    void SearchRoots();
    void SumAtZero();
    void FindProfiles();
    template <class Searches>
    void RunQSearches(Searches& searches);

    const MALaneFitKernels& kernels_;
    std::span<MASetRegression* const> regressions_;
    std::array<bool, mostLanes> isLoaded_{}; ///< false also once a fit has left the lane
    std::size_t rank_ = 0;
    std::size_t count_ = 0; ///< rows of the longest set
    std::vector<double> cells_;
    std::vector<double> variances_;
    std::vector<double> weights_;
    MALaneValues unit_{};
    std::array<MAProjectionSums, mostLanes> sums_;
    std::array<bool, mostLanes> isExact_{};
    /// Kept, because compilers clear the memory of new ones: more of it than there is to compute.
    std::array<std::optional<MAPointSearch>, mostLanes> pointSearches_;
    std::array<MAGeneralizedQ, mostLanes> qAtZero_{};
};

} // namespace MA_NAMESPACE
