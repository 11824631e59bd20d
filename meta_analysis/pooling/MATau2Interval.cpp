#include "meta_analysis/pooling/MATau2Interval.h"

#include "meta_analysis/platform/common/KXDistFun.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/pooling/MATau2Search.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

namespace MA_NAMESPACE {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr MATau2Bounds noBounds{KXMV::Missing(), KXMV::Missing()};

bool HasInterval(const MACurveBounds& bounds)
{
    return AreUsable(bounds) && bounds.residualDf >= 1.0;
}

MATau2Bounds InUnitOfData(double unit, double lower, double upper)
{
    if (std::isnan(lower) || std::isnan(upper))
        return noBounds;
    return {lower * unit, upper * unit};
}

/// The log-likelihood at a t.
struct Landmark
{
    double t;
    double logLikelihood;
};

/// 0 and the stationary points, from left to right: the likelihood is monotone between any two, and falls
/// beyond the last. Empty where it is not a number.
std::vector<Landmark> FindLandmarks(MALikelihoodCurve& curve, double guess)
{
    std::vector<Landmark> landmarks{{0.0, curve.LogLikelihood(0.0)}};
    if (!CanRise(curve.Bounds()))
        return landmarks;
    MAStationaryPoints points(curve.Bounds(), guess);
    while (const std::optional<MAStationaryPoint> point = points.Next(curve))
        landmarks.push_back({point->t, curve.LogLikelihood(point->t)});
    if (!points.IsSound())
        landmarks.clear();
    return landmarks;
}

double GreatestLikelihood(const std::vector<Landmark>& landmarks)
{
    double greatest = -infinity;
    for (const Landmark& landmark : landmarks)
        greatest = std::max(greatest, landmark.logLikelihood);
    return greatest;
}

/// Where the likelihood falls through a level on its way from a t above the level to one below it, which may
/// be infinite, without a stationary point between.
///
/// The unknown is log(v + t), v the smallest variance, in which the likelihood looks like a parabola near a
/// maximum and like a line far out.
class LevelCrossing
{
public:
    LevelCrossing(MALikelihoodCurve& curve, double level, double above, double below)
        : curve_(curve),
          v_(curve.Bounds().minVariance),
          level_(level),
          direction_(below > above ? 1.0 : -1.0),
          above_(above),
          below_(below)
    {}

    double Find();

private:
    double StepFrom(double t);
    double Moved(double t, double step) const { return t + (t + v_) * std::expm1(step); }
    bool IsBetween(double t) const
    {
        return direction_ * (t - above_) > 0.0 && direction_ * (below_ - t) > 0.0;
    }
    double Middle() const;

    MALikelihoodCurve& curve_;
    double v_;
    double level_;
    double direction_; ///< in which the likelihood falls
    double above_;
    double below_;
};

/// A slope near 0 promises nothing beyond, where other variances begin to count.
constexpr double longestStep = 5.0;

/// Goes to where the parabola of value, slope and curvature meets the level, or to its vertex (Cauchy's
/// form of Newton's method), and narrows the bracket. With excess e, fall s and curvature c this is
/// d = 2e / (s + sqrt(s² - 2ce)).
double LevelCrossing::StepFrom(double t)
{
    const double excess = curve_.LogLikelihood(t) - level_;
    const MALikelihoodTerms terms = curve_.At(t);
    const double w = t + v_;
    const double slope = 0.5 * (terms.fit - terms.trace) * w;
    const double curvature = 0.5 * (terms.fitSlope * w - terms.traceSlope * w) * w + slope;
    const double fall = std::max(-direction_ * slope, 0.0); // may round to the other side of 0 at a maximum
    const double root = std::sqrt(std::max(fall * fall - 2.0 * curvature * excess, 0.0));
    (excess >= 0.0 ? above_ : below_) = t;
    const double step = excess == 0.0 ? 0.0 : 2.0 * excess / (fall + root);
    return direction_ * std::clamp(step, -longestStep, longestStep);
}

double LevelCrossing::Middle() const
{
    return std::isinf(below_) ? 2.0 * above_ + v_ : std::sqrt((above_ + v_) * (below_ + v_)) - v_;
}

/// A step that does not halve the one before it halves the bracket instead, unless the bracket is open and
/// the crossing still ahead. Convergence is cubic: what `lastStep` would still change is lost in rounding.
double LevelCrossing::Find()
{
    constexpr double lastStep = 1e-6;
    double t = above_;
    double previous = infinity;
    for (;;) {
        const double step = StepFrom(t);
        const bool shrinks = std::abs(step) <= 0.5 * previous || std::isinf(below_);
        double next = Moved(t, step);
        if (std::isnan(step))
            return step;
        if (shrinks && std::abs(step) <= lastStep)
            return std::clamp(next, std::min(above_, below_), std::max(above_, below_));
        if (!(shrinks && IsBetween(next)))
            next = Middle();
        if (!IsBetween(next))
            return t;
        previous = std::abs(std::log((next + v_) / (t + v_)));
        t = next;
    }
}

} // namespace

MAQProfileSearch::MAQProfileSearch(const MACurveBounds& bounds, MAQuantiles& quantiles)
    : bounds_(bounds), hasInterval_(HasInterval(bounds))
{
    if (!hasInterval_)
        return;
    upperTarget_ = quantiles.ChiLower(bounds.residualDf);
    search_.emplace(bounds, quantiles.ChiUpper(bounds.residualDf), 0.0);
    if (!search_->IsWaiting())
        SearchUpper();
}

void MAQProfileSearch::SearchUpper()
{
    lower_ = search_->Solution().t;
    isUpper_ = true;
    search_.emplace(bounds_, upperTarget_, lower_);
}

/// The search of the upper bound starts where that of the lower one has ended, with the same Q.
void MAQProfileSearch::Take(const MAGeneralizedQ& q)
{
    const double t = search_->Wanted();
    search_->Take(q);
    if (isUpper_ || search_->IsWaiting())
        return;
    SearchUpper();
    if (search_->IsWaiting() && search_->Wanted() == t)
        search_->Take(q);
}

/// At confidence levels near 0 both bounds are one root, and rounding may exchange them.
MATau2Bounds MAQProfileSearch::Found(double unit) const
{
    if (!hasInterval_)
        return noBounds;
    const double upper = search_->Solution().t;
    return InUnitOfData(unit, lower_, upper < lower_ ? lower_ : upper);
}

MATau2Bounds QProfileInterval(MALikelihoodCurve& curve, MAQuantiles& quantiles)
{
    MAQProfileSearch search(curve.Bounds(), quantiles);
    while (search.IsWaiting())
        search.Take(curve.QAt(search.Wanted()));
    return search.Found(curve.Unit());
}

MATau2Bounds ProfileLikelihoodInterval(MALikelihoodCurve& curve, double guess, double alpha)
{
    if (!HasInterval(curve.Bounds()))
        return noBounds;
    const std::vector<Landmark> landmarks = FindLandmarks(curve, guess);
    const double level = GreatestLikelihood(landmarks) - 0.5 * KXDistFun::IdfChiUpper(alpha, 1.0);
    const auto isInside = [=](const Landmark& landmark) { return landmark.logLikelihood >= level; };
    const auto first = std::find_if(landmarks.begin(), landmarks.end(), isInside);
    const auto last = std::find_if(landmarks.rbegin(), landmarks.rend(), isInside);
    if (first == landmarks.end())
        return noBounds;
    const bool isAtZero = first == landmarks.begin();
    const double beyond = last == landmarks.rbegin() ? infinity : (last - 1)->t;
    return InUnitOfData(curve.Unit(),
                        isAtZero ? 0.0 : LevelCrossing(curve, level, first->t, (first - 1)->t).Find(),
                        LevelCrossing(curve, level, last->t, beyond).Find());
}

MATau2Bounds Tau2Interval(MALikelihoodCurve& curve, MAConst::TAU2INTERVAL type,
                          MAConst::TAU2ESTIMATOR estimator, double guess, MAQuantiles& quantiles)
{
    if (type == MAConst::TAU2_INTERVAL_Q_PROFILE)
        return QProfileInterval(curve, quantiles);
    if (type == MAConst::TAU2_INTERVAL_PROFILE_LIKELIHOOD && HasLikelihood(estimator))
        return ProfileLikelihoodInterval(curve, guess, quantiles.Alpha());
    return noBounds;
}

} // namespace MA_NAMESPACE
