#include "meta_analysis/pooling/MAPooledCurve.h"

#include "meta_analysis/pooling/MALogSum.h"
#include "meta_analysis/pooling/MAPooledCurveSums.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

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
        const std::size_t end = std::min(i + curveBlockSize, count_);
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

MALikelihoodTerms MAPooledCurve::At(double t)
{
    return TermsOf(SumOthers<MASlopeSums<double>>(t), 1.0 / (bounds_.minVariance + t), type_);
}

MAGeneralizedQ MAPooledCurve::QAt(double t)
{
    return GeneralizedQOf(SumOthers<MAQSums<double>>(t), 1.0 / (bounds_.minVariance + t));
}

/// ML: -(1/2) [sum log(v + t) + y'Py + k log 2π]. REML: the same with k - 1 in place of k, and log(sum(w) /
/// k) added within the brackets.
double MAPooledCurve::LogLikelihood(double t)
{
    const auto s = SumOthers<MAQSums<double>>(t);
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
