#include "meta_analysis/pooling/MAPooledCurve.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

/// Studies whose terms are added up before they are added to the total: rounding errors grow with this and
/// with the number of blocks, not with the number of studies.
constexpr std::size_t blockSize = 256;

double Square(double x)
{
    return x * x;
}

} // namespace

/// Sums over the studies but the reference, with weights w and effects d counted from the reference study,
/// whose own d is 0.
struct MAPooledCurve::Sums
{
    enum Term
    {
        W,
        WW,
        WWW,
        WD,
        WWD,
        WWWD,
        WDD,
        WWDD,
        WWWDD,
        TermCount
    };

    std::array<double, TermCount> terms{};

    double operator[](Term term) const { return terms[term]; }
    void AddBlock(const double* effects, const double* variances, std::size_t count, double t, double effect0,
                  double unit, double scale);
};

/// In two lanes, for which there are registers of two numbers.
void MAPooledCurve::Sums::AddBlock(const double* effects, const double* variances, std::size_t count,
                                   double t, double effect0, double unit, double scale)
{
    constexpr std::size_t lanes = 2;
    double block[TermCount][lanes] = {};
    const auto addLane = [&](std::size_t lane, std::size_t i) {
        const double w = unit / (variances[i] + t);
        const double d = (effects[i] - effect0) * scale;
        const double ww = w * w;
        const double wd = w * d;
        const double wwd = w * wd;
        block[W][lane] += w;
        block[WW][lane] += ww;
        block[WWW][lane] += ww * w;
        block[WD][lane] += wd;
        block[WWD][lane] += wwd;
        block[WWWD][lane] += ww * wd;
        block[WDD][lane] += wd * d;
        block[WWDD][lane] += wd * wd;
        block[WWWDD][lane] += wwd * wd;
    };
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        for (std::size_t lane = 0; lane < lanes; ++lane)
            addLane(lane, i + lane);
    }
    if (i < count)
        addLane(0, i);
    for (std::size_t term = 0; term < TermCount; ++term)
        terms[term] += block[term][0] + block[term][1];
}

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
    double largest = variances_[0];
    for (std::size_t i = 1; i < count_; ++i) {
        if (variances_[i] < variances_[reference_])
            reference_ = i;
        largest = std::max(largest, variances_[i]);
    }
    referenceEffect_ = effects_[reference_];
    const double smallest = variances_[reference_];
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
        varianceSum += variances_[i] / unit_;
    }
    const auto k = static_cast<double>(count_);
    bounds_.residualSum = std::max(squares - sum * (sum / k), 0.0);
    if (std::isnan(squares) || std::isnan(varianceSum))
        bounds_.residualSum = squares + varianceSum;
    momentEstimate_ = bounds_.residualSum / (k - 1.0) - varianceSum / k;
}

MAPooledCurve::Sums MAPooledCurve::SumOthers(double t) const
{
    Sums sums;
    const auto addRange = [&](std::size_t first, std::size_t end) {
        for (; first < end; first += blockSize)
            sums.AddBlock(effects_ + first, variances_ + first, std::min(blockSize, end - first), t * unit_,
                          referenceEffect_, unit_, effectScale_);
    };
    addRange(0, reference_);
    addRange(reference_ + 1, count_);
    return sums;
}

/// With w0 the weight of the reference study, W the sum of all weights and m the mean of the effects d:
///     A = sum(w²(d - m)²),  tr P = sum'(w) - sum'(w²) / W + w0 sum'(w) / W,
/// the primed sums without the reference, of which no share of W exceeds 1/2. y'PPPy = z'Pz with z = Py =
/// w (d - m); as P takes no notice of a constant, z is counted from z0 = -m w0, where w0 alone would cancel.
MALikelihoodTerms MAPooledCurve::At(double t)
{
    const Sums s = SumOthers(t);
    const double w0 = 1.0 / (bounds_.minVariance + t);
    const double w = w0 + s[Sums::W];
    const double ww = w0 * w0 + s[Sums::WW];
    const double m = s[Sums::WD] / w;

    MALikelihoodTerms terms;
    terms.fit = s[Sums::WWDD] - 2.0 * m * s[Sums::WWD] + m * m * ww;
    // Sums of w z², and of w z, with z counted from z0.
    const double zz = s[Sums::WWWDD] + 2.0 * m * (w0 * s[Sums::WWD] - s[Sums::WWWD]) +
                      m * m * (w0 * (w0 * s[Sums::W] - 2.0 * s[Sums::WW]) + s[Sums::WWW]);
    const double z = s[Sums::WWD] + m * (w0 * s[Sums::W] - s[Sums::WW]);
    terms.fitSlope = -2.0 * (zz - z * (z / w));
    if (type_ == MALikelihoodType::Full) {
        terms.trace = w;
        terms.traceSlope = -ww;
        return terms;
    }
    const double share0 = w0 / w;
    const double shareW = s[Sums::W] / w;
    const double shareWW = s[Sums::WW] / w;
    terms.trace = s[Sums::W] - shareWW + w0 * shareW;
    terms.traceSlope = -(Square(w0 * shareW) + 2.0 * share0 * share0 * s[Sums::WW] + s[Sums::WW] -
                         2.0 * s[Sums::WWW] / w + shareWW * shareWW);
    return terms;
}

MAGeneralizedQ MAPooledCurve::QAt(double t)
{
    const Sums s = SumOthers(t);
    const double w0 = 1.0 / (bounds_.minVariance + t);
    const double m = s[Sums::WD] / (w0 + s[Sums::W]);
    return {s[Sums::WDD] - m * s[Sums::WD],
            -(s[Sums::WWDD] - 2.0 * m * s[Sums::WWD] + m * m * (w0 * w0 + s[Sums::WW]))};
}

/// ML: -(1/2) [sum log(v + t) + y'Py + k log 2π]. REML: the same with k - 1 in place of k, and log(sum(w) /
/// k) added within the brackets.
double MAPooledCurve::LogLikelihood(double t)
{
    const Sums s = SumOthers(t);
    const double w = 1.0 / (bounds_.minVariance + t) + s[Sums::W];
    const double q = s[Sums::WDD] - s[Sums::WD] * (s[Sums::WD] / w);
    const auto k = static_cast<double>(count_);
    const double logUnit = std::log(unit_);
    double twice = LogDeterminant(t) + k * logUnit + q + bounds_.traceSize * logTwoPi;
    if (type_ == MALikelihoodType::Restricted)
        twice += std::log(w / k) - logUnit;
    return -0.5 * twice;
}

/// Sum of log(v + t), with one logarithm for eight studies: their product is no larger than 1e280.
double MAPooledCurve::LogDeterminant(double t) const
{
    const std::size_t factors = bounds_.maxVariance + t < 1e35 ? 8 : 1;
    double sum = 0.0;
    for (std::size_t first = 0; first < count_; first += factors) {
        double product = 1.0;
        for (std::size_t i = first; i < std::min(first + factors, count_); ++i)
            product *= variances_[i] / unit_ + t;
        sum += std::log(product);
    }
    return sum;
}

} // namespace MA_NAMESPACE
