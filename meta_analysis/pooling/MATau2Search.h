#pragma once

#include "meta_analysis/pooling/MALikelihoodCurve.h"
#include "meta_analysis/pooling/MATau2Estimate.h"
#include "meta_analysis/settings/MAConst.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <optional>

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

/// Whether the likelihood can rise anywhere at all; if not, there is nothing to search.
bool CanRise(const MACurveBounds& bounds);

/// The global maximum of the likelihood over t >= 0; of equal ones the smallest t. `guess` is where the
/// search looks first, in the curve's units; any value will do. `precision` is how far it may end from the
/// maximum, relative to the smallest v + t; 0 for all digits, without which a search is as sure but shorter.
MATau2Solution FindLikelihoodMaximum(MALikelihoodCurve& curve, double guess, double precision = 0.0);

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

/// The estimate that `estimator` (ML, REML or EB) defines; `curve` is of the likelihood that goes with it.
MATau2Solution SolveTau2(MALikelihoodCurve& curve, MAConst::TAU2ESTIMATOR estimator, double guess,
                         double precision = 0.0);

/// The estimate that a search ended at; `unit` is that of its curve.
MATau2Estimate EstimateOf(const MATau2Solution& solution, double unit);

/// Precision of a search that another estimate is compared with, beside the hundredth that counts there.
constexpr double comparingPrecision = 1e-6;

/// Whether an estimate of tau² is off the one that a search has proved by more than a hundredth of the latter
/// plus the typical within-study variance. So it is where there is no proof, and `proved` not a number.
inline bool IsTau2Off(double estimate, double proved, double typicalVariance)
{
    return !(std::abs(estimate - proved) <= 0.01 * (proved + typicalVariance));
}

/// A point where the slope of the likelihood changes its sign.
struct MAStationaryPoint
{
    double t;
    bool isMaximum;
};

/// Finds the stationary points of a likelihood on t >= 0 from left to right, and proves up to rounding that
/// there are no others. It says at which t the curve is wanted, and takes the terms from whoever computes
/// them, so that many searches can go on side by side.
///
/// a = A^(-1/2) and b = 1 / B are concave and increasing: both are power means of v + t in the eigenvalues of
/// the model's variance. So each lies above its chord and below its tangents, and A - B has the sign of
/// b - a². An interval is settled when these bounds keep b - a² from 0, or when they make b - a² or
/// sqrt(b) - a monotone, which leaves at most one point. Any other interval is split. For equal variances a
/// and b are lines, and nothing is split. Beyond every t, a rises at least as steeply as
/// 1 / sqrt(residual sum of squares), which settles the unbounded interval.
///
/// Splitting ends where an interval is as short as rounding lets tell; what remains there, such as a slope
/// that touches 0, counts as a point.
class MAStationaryPoints
{
public:
    /// The bounds must outlive the object.
    MAStationaryPoints(const MACurveBounds& bounds, double guess, double precision = 0.0);

    /// Whether the curve is wanted, and where. It always is at first.
    bool IsWaiting() const { return isWaiting_; }
    double Wanted() const { return wanted_; }
    void Take(const MALikelihoodTerms& terms);

    /// While nothing is wanted: the point that was found last; none at the end, and where a term is not a
    /// number. `Proceed` goes on to the next.
    const std::optional<MAStationaryPoint>& Found() const { return found_; }
    void Proceed();
    /// The next point of the curve that has these bounds.
    std::optional<MAStationaryPoint> Next(MALikelihoodCurve& curve);

    /// Whether the likelihood falls at once from t = 0; once the first point was found, or none.
    bool FallsAtZero() const { return fallsAtZero_; }

    int Evaluations() const { return evaluations_; }
    /// Whether every term was a number.
    bool IsSound() const { return isSound_; }

private:
    /// The curve at one t.
    struct Node
    {
        double t;
        double a;      ///< A^(-1/2)
        double aSlope; ///< at infinity: the least slope of a
        double b;      ///< 1 / B
        double bSlope;
        double rootB; ///< sqrt(b)

        bool IsRising() const { return b > a * a; }
        bool IsFinite() const;
        double Imbalance() const;
        double Excess() const;
    };

    /// a² / b - 1 at one t, of which a root is sought.
    struct RootPoint
    {
        double t;
        double excess;
        double inverseSlope;
    };

    /// A step towards a root; its size and the error that it leaves, relative to v + t.
    struct RootStep
    {
        double length;
        double size;
        double error;
    };

    /// A root between two nodes, which close in on it.
    struct RootBracket
    {
        bool isMaximum;
        double low;
        double high;
        RootPoint before;
        RootPoint at;
        double previous; ///< step, relative to v + t
    };

    /// What the terms are wanted for.
    enum class Use
    {
        LeftEnd,
        RightEnd,
        Root
    };

    /// What is known of the slope of the likelihood on an interval.
    enum class Verdict
    {
        NoPoint,
        OneMaximum,
        OneMinimum,
        Open
    };

    Node NodeOf(const MALikelihoodTerms& terms);
    void Want(double t, Use use);
    void Find(double t, bool isMaximum);
    void StartFrom(const Node& atZero);
    void Settle();
    Verdict Judge(const Node& left, const Node& right) const;
    bool StaysPositive(const Node& left, const Node& right) const;
    bool StaysNegative(const Node& left, const Node& right) const;
    double SplitPoint(const Node& left, const Node& right) const;
    bool IsTooShort(const Node& left, const Node& right) const;
    static RootPoint RootPointAt(const Node& node);
    RootStep StepToRoot(const RootPoint& before, const RootPoint& at, double previous) const;
    void StartRoot(const Node& left, const Node& right, bool isMaximum);
    void NarrowRoot(const Node& node);
    void StepOnRoot();

    /// Splits at the geometric mean exhaust a double after 64 levels, those next to 0 after 53 more; each
    /// level leaves one node.
    static constexpr std::size_t maxNodes = 160;

    const MACurveBounds& bounds_;
    double guess_;
    double precision_;
    double upperBound_;  ///< beyond it A < B
    double leastASlope_; ///< slope of a at infinity
    bool isSound_ = true;
    bool isWaiting_ = true;
    Use use_ = Use::LeftEnd;
    double wanted_ = 0.0;
    std::optional<MAStationaryPoint> found_;
    int evaluations_ = 0;
    std::size_t rightCount_ = 0;
    std::array<Node, maxNodes> right_;
    Node left_; ///< up to it all is settled
    RootBracket root_;
    bool fallsAtZero_ = false;
};

} // namespace MA_NAMESPACE
