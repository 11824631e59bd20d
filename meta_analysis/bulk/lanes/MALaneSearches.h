#pragma once

#include "meta_analysis/bulk/lanes/MALaneKernels.h"
#include "meta_analysis/pooling/MATau2Search.h"

#include <array>
#include <cstddef>
#include <limits>
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

/// The search of a likelihood that has one maximum, as nearly all have: a second one ends it, for to compare
/// the two takes the likelihood.
class MASoleMaximumSearch
{
public:
    MASoleMaximumSearch(const MACurveBounds& bounds, double guess) : points_(bounds, guess) {}

    bool IsWaiting() const { return points_.IsWaiting() && !hasSecond_; }
    double Wanted() const { return points_.Wanted(); }
    void Take(const MALikelihoodTerms& terms)
    {
        points_.Take(terms);
        while (!points_.IsWaiting() && points_.Found() && !hasSecond_) {
            if (points_.Found()->isMaximum)
                Consider(points_.Found()->t);
            points_.Proceed();
        }
        if (!points_.IsWaiting() && points_.FallsAtZero())
            Consider(0.0);
    }
    /// NaN where there is none, or more than one.
    MATau2Solution Solution() const
    {
        const bool isSole = points_.IsSound() && !hasSecond_ && maximum_.has_value();
        return {isSole ? *maximum_ : std::numeric_limits<double>::quiet_NaN(), points_.Evaluations()};
    }

private:
    void Consider(double t)
    {
        hasSecond_ = maximum_.has_value();
        maximum_ = t;
    }

    MAStationaryPoints points_;
    std::optional<double> maximum_;
    bool hasSecond_ = false;
};

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
