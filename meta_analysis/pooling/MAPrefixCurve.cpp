#include "meta_analysis/pooling/MAPrefixCurve.h"

#include "meta_analysis/platform/common/Cancellation.h"
#include "meta_analysis/platform/common/Square.h"
#include "meta_analysis/pooling/MALogSum.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace MA_NAMESPACE {

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

double PowerOf2Above(double x)
{
    return x > 0.0 && std::isfinite(x) ? std::ldexp(1.0, std::ilogb(x) + 1) : x;
}

} // namespace

MAPrefixCurve::MAPrefixCurve(const MAEffects& studies, MALikelihoodType type) : sums_(studies), type_(type)
{
    unit_ = sums_.Unit();
    if (studies.Count() == 0)
        return;
    const auto [least, most] = std::minmax_element(studies.variances.begin(), studies.variances.end());
    bounds_.minVariance = *least / unit_;
    bounds_.maxVariance = *most / unit_;
}

void MAPrefixCurve::Append()
{
    isExact_ = true;
    squares_ += Square(sums_.Effect(sums_.Count()));
    sums_.Append();
    const auto count = static_cast<double>(sums_.Count());
    bounds_.residualDf = count - 1.0;
    bounds_.traceSize = type_ == MALikelihoodType::Full ? count : count - 1.0;
    bounds_.residualSum = bounds_.residualDf * PowerOf2Above(squares_ / bounds_.residualDf);
}

/// The difference, of which is noted whether it keeps enough of the number that it is taken from.
double MAPrefixCurve::Kept(double difference, double from)
{
    isExact_ = isExact_ && Keeps(difference, from);
    return isExact_ ? difference : notANumber;
}

/// The sums over residuals r = e - m from those over e; y'PPPy = s'Ps with s = Py, the weighted residuals.
MAPrefixCurve::Fit MAPrefixCurve::FitAt(double t)
{
    const auto [w, we, wee] = sums_.At(t);
    const double mean = we[0] / w[0];
    MATau2StepSums sums;
    sums.unit = unit_;
    sums.count = static_cast<double>(sums_.Count());
    sums.w1 = w[0];
    sums.w2 = w[1];
    sums.wr2 = Kept(wee[0] - mean * we[0], wee[0]);
    sums.w2r2 = Kept(wee[1] + mean * (mean * w[1] - 2.0 * we[1]), wee[1]);
    sums.traceP = Kept(w[0] - w[1] / w[0], w[0]);
    sums.tracePP = Kept(w[1] + Square(w[1] / w[0]) - 2.0 * w[2] / w[0], w[1]);
    const double cubes = Kept(wee[2] + mean * (mean * w[2] - 2.0 * we[2]), wee[2]);
    return {mean, sums, Kept(cubes - Square(we[1] - mean * w[1]) / w[0], cubes)};
}

MALikelihoodTerms MAPrefixCurve::At(double t)
{
    const Fit fit = FitAt(t);
    const bool isFull = type_ == MALikelihoodType::Full;
    return {fit.sums.w2r2, -2.0 * fit.cubicForm, isFull ? fit.sums.w1 : fit.sums.traceP,
            isFull ? -fit.sums.w2 : -fit.sums.tracePP};
}

MAGeneralizedQ MAPrefixCurve::QAt(double t)
{
    const Fit fit = FitAt(t);
    return {fit.sums.wr2, -fit.sums.w2r2};
}

/// O(k), for data whose likelihood has two maxima.
double MAPrefixCurve::LogLikelihood(double t)
{
    const Fit fit = FitAt(t);
    double twice = SumOfLogs(sums_.Count(), bounds_.maxVariance + t < 1e35,
                             [&](std::size_t i) { return sums_.Variance(i) + t; }) +
                   fit.sums.wr2 + bounds_.traceSize * (logTwoPi + std::log(unit_));
    if (type_ == MALikelihoodType::Restricted)
        twice += std::log(fit.sums.w1);
    return -0.5 * twice;
}

} // namespace MA_NAMESPACE
