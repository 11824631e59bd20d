#pragma once

#include "meta_analysis/pooling/MALikelihoodCurve.h"

namespace MA_NAMESPACE {

/// The between-study variance where a search ended, in the units of its curve; NaN where the data leave none
/// (a variance that is not positive and finite, or effects too far apart for them).
struct MATau2Solution
{
    double t;
    int evaluations;
};

/// Whether the data have a likelihood: their variances are positive, and all is finite and within range.
bool AreUsable(const MACurveBounds& bounds);

/// The search of `FindQRoot`, by values of Q that someone else computes.
class MAQRootSearch
{
public:
    MAQRootSearch(const MACurveBounds& bounds, double target, double guess, double precision = 0.0);

    /// Whether Q is wanted, and where.
    bool IsWaiting() const { return isWaiting_; }
    double Wanted() const { return solution_.t; }
    void Take(const MAGeneralizedQ& q);
    /// Once nothing is wanted.
    const MATau2Solution& Solution() const { return solution_; }

private:
    void EndAt(double t);

    double minVariance_;
    double target_;
    double smallestStep_; ///< relative to v + t
    bool isWaiting_ = true;
    MATau2Solution solution_{0.0, 0};
};

/// The t >= 0 with Q(t) = `target`; 0 where Q(0) is not above it, and where the
/// target is 0 for want of degrees of freedom.
MATau2Solution FindQRoot(MALikelihoodCurve& curve, double target, double guess, double precision = 0.0);

} // namespace MA_NAMESPACE
