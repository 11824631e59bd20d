#pragma once

#include "meta_analysis/bulk/lanes/MALaneKernels.h"
#include "meta_analysis/pooling/MATau2Search.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>

namespace MA_NAMESPACE {

/// Runs searches until none waits: `compute(t, found)` evaluates their curves at one t each.
template <class Search, class Found, class Compute>
void RunSideBySide(std::span<std::optional<Search>> searches, Compute compute)
{
    MALaneValues t{};
    std::array<Found, mostLanes> found;
    for (;;) {
        bool isWaiting = false;
        for (std::size_t lane = 0; lane < searches.size(); ++lane) {
            if (searches[lane] && searches[lane]->IsWaiting()) {
                t[lane] = searches[lane]->Wanted();
                isWaiting = true;
            }
        }
        if (!isWaiting)
            return;
        compute(t, found.data());
        for (std::size_t lane = 0; lane < searches.size(); ++lane) {
            if (searches[lane] && searches[lane]->IsWaiting())
                searches[lane]->Take(found[lane]);
        }
    }
}

/// Goes through all stationary points, as the search of the greatest maximum does.
class MAPointSearch
{
public:
    MAPointSearch(const MACurveBounds& bounds, double guess) : points_(bounds, guess) {}

    bool IsWaiting() const { return points_.IsWaiting(); }
    double Wanted() const { return points_.Wanted(); }
    void Take(const MALikelihoodTerms& terms)
    {
        points_.Take(terms);
        while (!points_.IsWaiting() && points_.Found())
            points_.Proceed();
    }

private:
    MAStationaryPoints points_;
};

} // namespace MA_NAMESPACE
