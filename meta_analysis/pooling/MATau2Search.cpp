#include "meta_analysis/pooling/MATau2Search.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace MA_NAMESPACE {

namespace {

constexpr double roundingUnit = std::numeric_limits<double>::epsilon();
constexpr double infinity = std::numeric_limits<double>::infinity();

// Sums of up to a million positive terms, added in blocks, keep their relative error below these.
constexpr double valueSlack = 1e-13;
constexpr double slopeSlack = 1e-12;

/// Steps towards a root that are this small in relation to v + t may come of rounding alone.
constexpr double roundingSteps = 1e-11;

/// The residual sum of squares is counted larger by this share where it serves as a bound.
constexpr double boundSlack = 1e-8;

/// The search accepts no larger residual sum of squares, in units near the smallest variance. Beyond it
/// products of weights underflow beside 1 / tau², and a maximum would be proved from rounding errors.
constexpr double greatestResidualSum = 1e150;

/// Beyond it A < B, from A <= residualSum / (v_min + t)² and B >= traceSize / (v_max + t).
double UpperBoundOf(const MACurveBounds& bounds)
{
    const double rss = bounds.residualSum * (1.0 + boundSlack);
    const double m = bounds.traceSize;
    const double range = bounds.maxVariance - bounds.minVariance;
    return (rss + std::sqrt(rss * rss + 4.0 * m * rss * range)) / (2.0 * m) - bounds.minVariance;
}

/// Whether (p + q x)² > r + u x on [0, end], with some slack: a parabola over a line, least at an end or at
/// its vertex. `end` may be infinite, where q > 0 decides.
bool SquareExceedsLine(double p, double q, double r, double u, double end)
{
    const auto exceeds = [=](double x) {
        const double line = p + q * x;
        return line * line * (1.0 - valueSlack) > r + u * x;
    };
    const double vertex = std::clamp((0.5 * u / q - p) / q, 0.0, end);
    return exceeds(0.0) && exceeds(vertex) && (std::isinf(end) || exceeds(end));
}

/// Where two lines meet, the second one through (`end`, right) counted from 0; within [0, end].
double Crossing(double left, double leftSlope, double right, double rightSlope, double end)
{
    const double x = ((right - rightSlope * end) - left) / (leftSlope - rightSlope);
    return x >= 0.0 && x <= end ? x : end;
}

} // namespace

bool AreUsable(const MACurveBounds& bounds)
{
    return bounds.minVariance > 0.0 && std::isfinite(bounds.maxVariance) &&
           bounds.residualSum <= greatestResidualSum;
}

/// The upper bound is positive where those of A and B meet beyond t = 0.
bool CanRise(const MACurveBounds& bounds)
{
    const double rss = bounds.residualSum * (1.0 + boundSlack);
    return bounds.residualDf > 0.0 && bounds.residualSum > 0.0 &&
           rss * bounds.maxVariance > bounds.traceSize * bounds.minVariance * bounds.minVariance;
}

bool MAStationaryPoints::Node::IsFinite() const
{
    return std::isfinite(a) && std::isfinite(aSlope) && std::isfinite(b) && std::isfinite(bSlope);
}

/// How far A and B are apart: |B / A - 1|.
double MAStationaryPoints::Node::Imbalance() const
{
    return std::abs(Excess());
}

MAStationaryPoints::MAStationaryPoints(const MACurveBounds& bounds, double guess, double precision)
    : bounds_(bounds),
      guess_(guess),
      precision_(std::max(precision, roundingUnit)),
      upperBound_(UpperBoundOf(bounds)),
      leastASlope_((1.0 - boundSlack) / std::sqrt(bounds.residualSum))
{}

void MAStationaryPoints::Want(double t, Use use)
{
    isWaiting_ = true;
    wanted_ = t;
    use_ = use;
}

void MAStationaryPoints::Find(double t, bool isMaximum)
{
    found_ = MAStationaryPoint{t, isMaximum};
}

MAStationaryPoints::Node MAStationaryPoints::NodeOf(const MALikelihoodTerms& terms)
{
    ++evaluations_;
    const double a = 1.0 / std::sqrt(terms.fit);
    const double b = 1.0 / terms.trace;
    const Node node{wanted_,     a, -0.5 * terms.fitSlope * a * a * a, b, -terms.traceSlope * b * b,
                    std::sqrt(b)};
    isSound_ = isSound_ && node.IsFinite();
    return node;
}

void MAStationaryPoints::Take(const MALikelihoodTerms& terms)
{
    isWaiting_ = false;
    const Node node = NodeOf(terms);
    switch (use_) {
    case Use::LeftEnd:
        StartFrom(node);
        break;
    case Use::RightEnd:
        right_[rightCount_++] = node;
        Settle();
        break;
    case Use::Root:
        NarrowRoot(node);
        break;
    }
}

/// The guess is worth an evaluation unless the first one has settled everything.
void MAStationaryPoints::StartFrom(const Node& atZero)
{
    left_ = atZero;
    fallsAtZero_ = !atZero.IsRising();
    const Node atInfinity{infinity, infinity, leastASlope_, infinity, 0.0, infinity};
    right_[rightCount_++] = atInfinity;
    if (isSound_ && Judge(left_, atInfinity) != Verdict::NoPoint && guess_ > 0.0 && guess_ < upperBound_)
        Want(guess_, Use::RightEnd);
    else
        Settle();
}

/// Goes on until the curve is wanted or a point is found.
void MAStationaryPoints::Settle()
{
    while (isSound_ && rightCount_ > 0) {
        const Node right = right_[rightCount_ - 1];
        const Verdict verdict = Judge(left_, right);
        if (verdict == Verdict::Open && !IsTooShort(left_, right))
            return Want(SplitPoint(left_, right), Use::RightEnd);
        const Node left = left_;
        left_ = right;
        --rightCount_;
        if (verdict == Verdict::Open)
            return Find(right.t, left.IsRising() || !right.IsRising());
        if (verdict != Verdict::NoPoint)
            return StartRoot(left, right, verdict == Verdict::OneMaximum);
    }
}

void MAStationaryPoints::Proceed()
{
    found_.reset();
    Settle();
}

std::optional<MAStationaryPoint> MAStationaryPoints::Next(MALikelihoodCurve& curve)
{
    if (!isWaiting_)
        Proceed();
    while (isWaiting_)
        Take(curve.At(wanted_));
    return found_;
}

/// The slopes of concave functions fall, so that those at the ends bound them in between.
MAStationaryPoints::Verdict MAStationaryPoints::Judge(const Node& left, const Node& right) const
{
    if (left.t >= upperBound_)
        return Verdict::NoPoint;
    const bool isBounded = std::isfinite(right.t);
    const bool risesRight = isBounded && right.IsRising();
    if (left.bSlope < 2.0 * std::max(left.a, left.rootB) * right.aSlope * (1.0 - slopeSlack))
        return left.IsRising() && !risesRight ? Verdict::OneMaximum : Verdict::NoPoint;
    if (isBounded && right.bSlope > 2.0 * std::min(right.a, right.rootB) * left.aSlope * (1.0 + slopeSlack))
        return !left.IsRising() && risesRight ? Verdict::OneMinimum : Verdict::NoPoint;
    const bool keepsSign =
        left.IsRising() ? isBounded && StaysPositive(left, right) : StaysNegative(left, right);
    return keepsSign ? Verdict::NoPoint : Verdict::Open;
}

/// a lies below its tangents, whose square is convex, and b above its chord: it is enough to compare them at
/// the ends and where the tangents cross.
bool MAStationaryPoints::StaysPositive(const Node& left, const Node& right) const
{
    const auto isBelow = [](double a, double b) { return a * a < b * (1.0 - valueSlack); };
    if (!isBelow(left.a, left.b) || !isBelow(right.a, right.b))
        return false;
    const double length = right.t - left.t;
    const double x = Crossing(left.a, left.aSlope, right.a, right.aSlope, length);
    const double fromRight = right.a - right.aSlope * (length - x) + 4.0 * roundingUnit * right.a;
    const double chord = left.b + (right.b - left.b) * (x / length);
    return isBelow(std::max(left.a + left.aSlope * x, fromRight), chord);
}

/// a lies above its chord and b below its tangents.
bool MAStationaryPoints::StaysNegative(const Node& left, const Node& right) const
{
    if (!std::isfinite(right.t))
        return SquareExceedsLine(left.a, right.aSlope, left.b, left.bSlope, infinity);
    const double length = right.t - left.t;
    const double slope = (right.a - left.a) / length;
    const double x = Crossing(left.b, left.bSlope, right.b, right.bSlope, length);
    const double fromRight = right.b - right.bSlope * (length - x) + 4.0 * roundingUnit * right.b;
    return SquareExceedsLine(left.a, slope, left.b, left.bSlope, x) &&
           SquareExceedsLine(left.a + slope * x, slope, fromRight, right.bSlope, length - x);
}

/// In the middle of v + t on the scale on which the curve looks like a power; of t itself next to 0.
double MAStationaryPoints::SplitPoint(const Node& left, const Node& right) const
{
    if (!std::isfinite(right.t))
        return upperBound_;
    const double v = bounds_.minVariance;
    return right.t < v ? 0.5 * (left.t + right.t) : std::sqrt((left.t + v) * (right.t + v)) - v;
}

bool MAStationaryPoints::IsTooShort(const Node& left, const Node& right) const
{
    return rightCount_ == maxNodes || right.t - left.t <= 8.0 * roundingUnit * (left.t + bounds_.minVariance);
}

/// a² / b - 1, whose slope changes little; for equal variances it is a line.
double MAStationaryPoints::Node::Excess() const
{
    return (a * a - b) / b;
}

MAStationaryPoints::RootPoint MAStationaryPoints::RootPointAt(const Node& node)
{
    const double slope = node.a * (2.0 * node.aSlope * node.b - node.a * node.bSlope);
    return {node.t, node.Excess(), node.b * node.b / slope};
}

/// Newton's step, or where the point before is near, a cubic one: t as a function of a² / b - 1 has known
/// values and slopes at both, and the cubic through them is read at 0 (inverse Hermite interpolation). The
/// error of the first is C x² with the curvature C and the step x relative to v + t, that of the second
/// C³ (xy)², y being what the point before is off. C is counted at least 1.
MAStationaryPoints::RootStep MAStationaryPoints::StepToRoot(const RootPoint& before, const RootPoint& at,
                                                            double previous) const
{
    const double v = bounds_.minVariance;
    const double scale = 1.0 / (at.t + v);
    const double newton = -at.excess * at.inverseSlope;
    const double x = std::abs(newton) * scale;
    const auto linear = [=] { return RootStep{newton, x, std::max(x / (previous * previous), 1.0) * x * x}; };
    const double y = std::abs(at.t + newton - before.t) / (std::min(at.t, before.t) + v);
    if (!(y <= 0.5))
        return linear();
    const double perRise = 1.0 / (at.excess - before.excess);
    const double chord = (at.t - before.t) * perRise;
    const double bend = at.inverseSlope - chord;
    const double twist = bend - (chord - before.inverseSlope);
    const double correction = at.excess * at.excess * perRise * (bend - before.excess * perRise * twist);
    if (!(std::abs(correction) <= 0.5 * std::abs(newton)))
        return linear();
    const double squareError = std::max(std::abs(correction) * scale, x * x);
    const double bentShare = squareError / (x * x) * y;
    return {newton + correction, std::abs(newton + correction) * scale,
            squareError * std::min(1.0, bentShare * bentShare)};
}

void MAStationaryPoints::StartRoot(const Node& left, const Node& right, bool isMaximum)
{
    const bool isRightNearer = std::isfinite(right.t) && right.Imbalance() < left.Imbalance();
    root_ = {isMaximum,
             left.t,
             std::min(right.t, upperBound_),
             RootPointAt(isRightNearer ? left : right),
             RootPointAt(isRightNearer ? right : left),
             infinity};
    StepOnRoot();
}

/// The slope falls through 0 at a maximum: where it rises, the maximum lies ahead.
void MAStationaryPoints::NarrowRoot(const Node& node)
{
    root_.at = RootPointAt(node);
    (node.IsRising() == root_.isMaximum ? root_.low : root_.high) = node.t;
    if (isSound_)
        StepOnRoot();
}

/// Between the ends, which close in on the root. A step that does not halve the one before it halves the
/// interval instead, unless both are down to the rounding of A and B. The last step is taken without a look
/// at where it leads, once its error is small enough.
void MAStationaryPoints::StepOnRoot()
{
    const double v = bounds_.minVariance;
    const RootStep step = StepToRoot(root_.before, root_.at, root_.previous);
    const bool shrinks = step.size <= 0.5 * root_.previous;
    double next = root_.at.t + step.length;
    if (step.error <= precision_ || (!shrinks && step.size <= roundingSteps))
        return Find(std::clamp(next, root_.low, root_.high), root_.isMaximum);
    if (!(shrinks && next > root_.low && next < root_.high))
        next = std::sqrt((root_.low + v) * (root_.high + v)) - v;
    if (!(next > root_.low && next < root_.high))
        return Find(root_.at.t, root_.isMaximum);
    root_.previous = std::abs(next - root_.at.t) / (next + v);
    root_.before = root_.at;
    Want(next, Use::Root);
}

MATau2Solution FindLikelihoodMaximum(MALikelihoodCurve& curve, double guess, double precision)
{
    if (!AreUsable(curve.Bounds()))
        return {std::numeric_limits<double>::quiet_NaN(), 0};
    if (!CanRise(curve.Bounds()))
        return {0.0, 0};
    MAStationaryPoints points(curve.Bounds(), guess, precision);
    std::optional<double> best;
    std::optional<double> bestLikelihood;
    const auto consider = [&](double t) {
        if (!best) {
            best = t;
            return;
        }
        if (!bestLikelihood)
            bestLikelihood = curve.LogLikelihood(*best);
        const double likelihood = curve.LogLikelihood(t);
        if (likelihood > *bestLikelihood + valueSlack * std::abs(*bestLikelihood)) {
            best = t;
            bestLikelihood = likelihood;
        }
    };
    std::optional<MAStationaryPoint> point = points.Next(curve);
    if (points.FallsAtZero())
        consider(0.0);
    for (; point; point = points.Next(curve)) {
        if (point->isMaximum)
            consider(point->t);
    }
    if (!points.IsSound())
        return {std::numeric_limits<double>::quiet_NaN(), points.Evaluations()};
    return {*best, points.Evaluations()};
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

/// EB: Paule and Mandel (1982), Journal of Research of the National Bureau of Standards 87, 377-385.
MATau2Solution SolveTau2(MALikelihoodCurve& curve, MAConst::TAU2ESTIMATOR estimator, double guess,
                         double precision)
{
    switch (MethodOf(estimator)) {
    case MATau2Method::FullLikelihood:
    case MATau2Method::RestrictedLikelihood:
        return FindLikelihoodMaximum(curve, guess, precision);
    case MATau2Method::QRoot:
        return FindQRoot(curve, curve.Bounds().residualDf, guess, precision);
    case MATau2Method::ClosedForm:
        break;
    }
    return {std::numeric_limits<double>::quiet_NaN(), 0};
}

MATau2Estimate EstimateOf(const MATau2Solution& solution, double unit)
{
    MATau2Estimate estimate;
    estimate.tau2 = solution.t * unit;
    estimate.evaluations = solution.evaluations;
    estimate.convergence =
        std::isfinite(estimate.tau2) ? MAConst::TAU2_GLOBAL_OPTIMUM : MAConst::TAU2_STEP_NOT_FINITE;
    return estimate;
}

} // namespace MA_NAMESPACE
