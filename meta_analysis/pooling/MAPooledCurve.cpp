#include "meta_analysis/pooling/MAPooledCurve.h"

#include "meta_analysis/platform/common/Square.h"
#include "meta_analysis/pooling/MALogSum.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

/// Studies whose terms are added up before they are added to the total: rounding errors grow with this and
/// with the number of blocks, not with the number of studies.
constexpr std::size_t blockSize = 256;

} // namespace

/// Sums over the studies but the reference, with weights w and effects d counted from the reference study,
/// whose own d is 0. One study after another: the terms wait for the division, not for each other.
struct MAPooledCurve::SlopeSums
{
    double w = 0.0;
    double ww = 0.0;
    double www = 0.0;
    double wd = 0.0;
    double wwd = 0.0;
    double wwwd = 0.0;
    double wwdd = 0.0;
    double wwwdd = 0.0;

    void Add(double weight, double d)
    {
        const double squared = weight * weight;
        const double product = weight * d;
        const double squaredProduct = weight * product;
        w += weight;
        ww += squared;
        www += squared * weight;
        wd += product;
        wwd += squaredProduct;
        wwwd += squared * product;
        wwdd += product * product;
        wwwdd += squaredProduct * product;
    }
    void Add(const SlopeSums& block)
    {
        w += block.w;
        ww += block.ww;
        www += block.www;
        wd += block.wd;
        wwd += block.wwd;
        wwwd += block.wwwd;
        wwdd += block.wwdd;
        wwwdd += block.wwwdd;
    }
};

/// As `SlopeSums`, for Q.
struct MAPooledCurve::QSums
{
    double w = 0.0;
    double ww = 0.0;
    double wd = 0.0;
    double wwd = 0.0;
    double wdd = 0.0;
    double wwdd = 0.0;

    void Add(double weight, double d)
    {
        const double product = weight * d;
        w += weight;
        ww += weight * weight;
        wd += product;
        wwd += weight * product;
        wdd += product * d;
        wwdd += product * product;
    }
    void Add(const QSums& block)
    {
        w += block.w;
        ww += block.ww;
        wd += block.wd;
        wwd += block.wwd;
        wdd += block.wdd;
        wwdd += block.wwdd;
    }
};

MAPooledCurve::MAPooledCurve(const double* effects, const double* variances, std::size_t count,
                             MALikelihoodType type)
    : effects_(effects), variances_(variances), count_(count), type_(type)
{
    bounds_.residualDf = static_cast<double>(count) - 1.0;
    bounds_.traceSize = type == MALikelihoodType::Full ? static_cast<double>(count) : bounds_.residualDf;
    if (count == 0)
        return;
    FindReference();
    MeasureSpread();
}

/// A variance that is not a number is no smallest one and no largest: it makes the residual sum none.
void MAPooledCurve::FindReference()
{
    double smallest = variances_[0];
    double largest = smallest;
    std::size_t reference = 0;
    for (std::size_t i = 1; i < count_; ++i) {
        const double variance = variances_[i];
        if (variance < smallest) {
            smallest = variance;
            reference = i;
        }
        largest = std::max(largest, variance);
    }
    reference_ = reference;
    referenceEffect_ = effects_[reference];
    if (!(smallest > 0.0) || !std::isfinite(largest))
        return;
    unit_ = PowerOf4Below(smallest);
    effectScale_ = 1.0 / std::sqrt(unit_);
    bounds_.minVariance = smallest / unit_;
    bounds_.maxVariance = largest / unit_;
}

/// The residual sum is only a bound, and may lose digits where the reference study is far from all others.
void MAPooledCurve::MeasureSpread()
{
    double sum = 0.0;
    double squares = 0.0;
    double varianceSum = 0.0;
    for (std::size_t i = 0; i < count_; ++i) {
        const double d = (effects_[i] - referenceEffect_) * effectScale_;
        sum += d;
        squares += d * d;
        varianceSum += variances_[i] * effectScale_ * effectScale_;
    }
    const auto k = static_cast<double>(count_);
    bounds_.residualSum = std::max(squares - sum * (sum / k), 0.0);
    if (std::isnan(squares) || std::isnan(varianceSum))
        bounds_.residualSum = squares + varianceSum;
    momentEstimate_ = bounds_.residualSum / (k - 1.0) - varianceSum / k;
}

template <class Sums>
Sums MAPooledCurve::SumOthers(double t) const
{
    const double* const effects = effects_;
    const double* const variances = variances_;
    const double unit = unit_;
    const double shift = t * unit;
    const double origin = referenceEffect_;
    const double scale = effectScale_;
    Sums total;
    std::size_t i = 0;
    const auto addUpTo = [&](std::size_t end, Sums& block) {
        for (; i < end; ++i)
            block.Add(unit / (variances[i] + shift), (effects[i] - origin) * scale);
    };
    while (i < count_) {
        const std::size_t end = std::min(i + blockSize, count_);
        Sums block;
        if (reference_ >= i && reference_ < end) {
            addUpTo(reference_, block);
            ++i;
        }
        addUpTo(end, block);
        total.Add(block);
    }
    return total;
}

/// With w0 the weight of the reference study, W the sum of all weights and m the mean of the effects d:
///     A = sum(w²(d - m)²),  tr P = sum'(w) - sum'(w²) / W + w0 sum'(w) / W,
/// the primed sums without the reference, of which no share of W exceeds 1/2. y'PPPy = z'Pz with z = Py =
/// w (d - m); as P takes no notice of a constant, z is counted from z0 = -m w0, where w0 alone would cancel.
MALikelihoodTerms MAPooledCurve::At(double t)
{
    const auto s = SumOthers<SlopeSums>(t);
    const double w0 = 1.0 / (bounds_.minVariance + t);
    const double w = w0 + s.w;
    const double ww = w0 * w0 + s.ww;
    const double perW = 1.0 / w;
    const double m = s.wd * perW;

    MALikelihoodTerms terms;
    terms.fit = s.wwdd - 2.0 * m * s.wwd + m * m * ww;
    // Sums of w z², and of w z, with z counted from z0.
    const double zz =
        s.wwwdd + 2.0 * m * (w0 * s.wwd - s.wwwd) + m * m * (w0 * (w0 * s.w - 2.0 * s.ww) + s.www);
    const double z = s.wwd + m * (w0 * s.w - s.ww);
    terms.fitSlope = -2.0 * (zz - z * (z * perW));
    if (type_ == MALikelihoodType::Full) {
        terms.trace = w;
        terms.traceSlope = -ww;
        return terms;
    }
    const double share0 = w0 * perW;
    const double shareW = s.w * perW;
    const double shareWW = s.ww * perW;
    terms.trace = s.w - shareWW + w0 * shareW;
    terms.traceSlope =
        -(Square(w0 * shareW) + 2.0 * share0 * share0 * s.ww + s.ww - 2.0 * s.www * perW + shareWW * shareWW);
    return terms;
}

MAGeneralizedQ MAPooledCurve::QAt(double t)
{
    const auto s = SumOthers<QSums>(t);
    const double w0 = 1.0 / (bounds_.minVariance + t);
    const double m = s.wd / (w0 + s.w);
    return {s.wdd - m * s.wd, -(s.wwdd - 2.0 * m * s.wwd + m * m * (w0 * w0 + s.ww))};
}

/// ML: -(1/2) [sum log(v + t) + y'Py + k log 2π]. REML: the same with k - 1 in place of k, and log(sum(w) /
/// k) added within the brackets.
double MAPooledCurve::LogLikelihood(double t)
{
    const auto s = SumOthers<QSums>(t);
    const double w = 1.0 / (bounds_.minVariance + t) + s.w;
    const double q = s.wdd - s.wd * (s.wd / w);
    const auto k = static_cast<double>(count_);
    const double logUnit = std::log(unit_);
    double twice = LogDeterminant(t) + k * logUnit + q + bounds_.traceSize * logTwoPi;
    if (type_ == MALikelihoodType::Restricted)
        twice += std::log(w / k) - logUnit;
    return -0.5 * twice;
}

/// Sum of log(v + t).
double MAPooledCurve::LogDeterminant(double t) const
{
    return SumOfLogs(count_, bounds_.maxVariance + t < 1e35,
                     [&](std::size_t i) { return variances_[i] * effectScale_ * effectScale_ + t; });
}

} // namespace MA_NAMESPACE
