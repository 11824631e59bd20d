#pragma once

#include "meta_analysis/settings/MAEstimators.h"

#include <cmath>

namespace MA_NAMESPACE {

/// Whether the likelihood is that of the data (ML) or of their residuals (REML).
enum class MALikelihoodType
{
    Full,
    Restricted
};

/// The likelihood that an estimator maximises. One that maximises none takes only the Q statistic of the
/// curve, which both likelihoods share.
inline MALikelihoodType LikelihoodOf(MAConst::TAU2ESTIMATOR estimator)
{
    switch (MethodOf(estimator)) {
    case MATau2Method::FullLikelihood:
        return MALikelihoodType::Full;
    case MATau2Method::RestrictedLikelihood:
    case MATau2Method::QRoot:
    case MATau2Method::ClosedForm:
        break;
    }
    return MALikelihoodType::Restricted;
}

/// The two sides of the likelihood equation A(t) = B(t) for the between-study variance, with their slopes.
///
/// With W = diag(1 / (v + t)) and P = W - WX(X'WX)⁻X'W, twice the slope of the profile log-likelihood is
/// A - B. Both sides are positive, decreasing and convex.
template <class Number>
struct MALikelihoodTermsOf
{
    Number fit;        ///< A = y'PPy
    Number fitSlope;   ///< A' = -2 y'PPPy
    Number trace;      ///< B = tr P (REML) or tr W (ML)
    Number traceSlope; ///< B' = -tr PP or -tr WW
};
using MALikelihoodTerms = MALikelihoodTermsOf<double>;

/// The generalized Q statistic Q(t) = y'Py, which falls with t, and its slope -y'PPy.
template <class Number>
struct MAGeneralizedQOf
{
    Number value;
    Number slope;
};
using MAGeneralizedQ = MAGeneralizedQOf<double>;

/// What bounds the two sides wherever they are not evaluated.
struct MACurveBounds
{
    double minVariance = 0.0; ///< smallest and largest within-study variance
    double maxVariance = 0.0;
    double residualSum = 0.0; ///< squares about the unweighted fit: A <= residualSum / (minVariance + t)²
    double traceSize = 0.0;   ///< k - p (REML) or k (ML): B >= traceSize / (maxVariance + t)
    double residualDf = 0.0;  ///< k - p, p the rank of the predictors
};

constexpr double logTwoPi = 1.83787706640934548356;

/// The power of 4 in (x / 4, x], for a positive and finite x.
inline double PowerOf4Below(double x)
{
    const int exponent = std::ilogb(x);
    return std::ldexp(1.0, exponent - (exponent & 1));
}

/// The likelihood of the between-study variance t, as a curve that can be evaluated at any t >= 0.
///
/// Effects and variances are counted in a unit that is a power of 4 (of 2 for effects) near the smallest
/// variance, so that nothing overflows and no result depends on the unit of the data: t and what `At`, `QAt`
/// and `Bounds` return are in these units, and t times `Unit` is tau².
class MALikelihoodCurve
{
public:
    virtual ~MALikelihoodCurve() = default;

    virtual MALikelihoodTerms At(double t) = 0;
    virtual MAGeneralizedQ QAt(double t) = 0;
    /// Of the effects in their own unit, with all constants.
    virtual double LogLikelihood(double t) = 0;

    const MACurveBounds& Bounds() const { return bounds_; }
    double Unit() const { return unit_; }

protected:
    MACurveBounds bounds_;
    double unit_ = 1.0;
};

} // namespace MA_NAMESPACE
