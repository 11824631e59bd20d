#include "meta_analysis/pooling/MAQRootSearch.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace MA_NAMESPACE {

namespace {

constexpr double roundingUnit = std::numeric_limits<double>::epsilon();

/// The search accepts no larger residual sum of squares, in units near the smallest variance. Beyond it
/// products of weights underflow beside 1 / tau², and a maximum would be proved from rounding errors.
constexpr double greatestResidualSum = 1e150;

} // namespace

bool AreUsable(const MACurveBounds& bounds)
{
    return bounds.minVariance > 0.0 && std::isfinite(bounds.maxVariance) &&
           bounds.residualSum <= greatestResidualSum;
}

MAQRootSearch::MAQRootSearch(const MACurveBounds& bounds, double target, double guess, double precision)
    : minVariance_(bounds.minVariance),
      target_(target),
      smallestStep_(std::max(4.0 * roundingUnit, precision))
{
    if (!AreUsable(bounds))
        EndAt(std::numeric_limits<double>::quiet_NaN());
    else if (bounds.residualSum == 0.0 || target <= 0.0)
        EndAt(0.0);
    else
        solution_.t = std::max(guess, 0.0);
}

void MAQRootSearch::EndAt(double t)
{
    isWaiting_ = false;
    solution_.t = t;
}

/// Newton's method on 1 / Q, which is concave: from the left it never passes the root, and from the right its
/// first step lands left of it. There a step back is the rounding error of Q.
void MAQRootSearch::Take(const MAGeneralizedQ& q)
{
    const double t = solution_.t;
    ++solution_.evaluations;
    const double step = (q.value - target_) * q.value / (target_ * -q.slope);
    const bool isSmall = std::abs(step) <= smallestStep_ * (t + minVariance_);
    const bool cannotStepBack = t == 0.0 || solution_.evaluations > 1;
    if (!std::isfinite(step) || q.slope == 0.0)
        EndAt(std::numeric_limits<double>::quiet_NaN());
    else if (isSmall || (step <= 0.0 && cannotStepBack))
        EndAt(t);
    else
        solution_.t = std::max(t + step, 0.0);
}

MATau2Solution FindQRoot(MALikelihoodCurve& curve, double target, double guess, double precision)
{
    MAQRootSearch search(curve.Bounds(), target, guess, precision);
    while (search.IsWaiting())
        search.Take(curve.QAt(search.Wanted()));
    return search.Solution();
}

} // namespace MA_NAMESPACE
