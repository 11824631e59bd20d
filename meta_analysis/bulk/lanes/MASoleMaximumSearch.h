#pragma once

#include "meta_analysis/pooling/MATau2Search.h"

#include <limits>
#include <optional>

namespace MA_NAMESPACE {

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

} // namespace MA_NAMESPACE
