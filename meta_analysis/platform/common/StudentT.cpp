#include "meta_analysis/platform/common/StudentT.h"

#include "meta_analysis/platform/common/DensityTerms.h"
#include "meta_analysis/platform/common/IncompleteBeta.h"
#include "meta_analysis/platform/common/NormalQuantile.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace distribution {

namespace {

constexpr double logSqrtTwoPi = 0.91893853320467274178;
constexpr double roundingUnit = std::numeric_limits<double>::epsilon();

} // namespace

// The density at 0 is Gamma(a + 1/2) / Gamma(a) / sqrt(2 pi a) with a = df / 2. In Stirling's form of the two
// gamma functions everything large cancels on paper.
StudentT::StudentT(double df) noexcept
    : df_(df),
      half_(0.5 * df),
      logConstant_(StirlingRemainder(half_ + 0.5) - StirlingRemainder(half_) -
                   Deviance(half_, half_ + 0.5, 0.5) - logSqrtTwoPi)
{}

ScaledProbability StudentT::Upper(double t) const noexcept
{
    const ScaledProbability upper = Evaluate(t).upper;
    return upper.Value() > 0.5 ? ScaledProbability{0.0, 0.5} : upper; // which rounding may exceed near t = 0
}

// The series of the central probability is fast up to a share of 1/2, and at t^2 = 6 it leaves an upper
// probability of 1/140 at least: taking it from 1/2 costs two digits of sixteen.
bool StudentT::IsCentral(double t) const noexcept
{
    return t * t <= std::min(6.0, df_);
}

StudentT::Point StudentT::Evaluate(double t) const noexcept
{
    // t (1 + ratio)^-(df + 1)/2 is written with the power df / 2, so that what multiplies it is never large.
    // The ratio overflows long after 1 + ratio has become equal to it.
    const double ratio = t * t / df_;
    const double logOnePlusRatio = std::isinf(ratio) ? 2.0 * std::log(t) - std::log(df_) : std::log1p(ratio);
    const double tailShare = 1.0 / (1.0 + ratio);
    const double centralShare = 1.0 / (1.0 + 1.0 / ratio);
    const double root = std::sqrt(df_ * centralShare);
    const ScaledProbability density = {logConstant_ - half_ * logOnePlusRatio, root};
    if (IsCentral(t)) {
        const double central = root * std::exp(density.exponent) * CentralSeries(centralShare);
        return {centralShare, density, central, {0.0, 0.5 - central}};
    }
    const double excess = half_ * centralShare - 0.5 * tailShare;
    const double fraction = BetaFraction({half_, 0.5, tailShare, centralShare, excess});
    const ScaledProbability upper = {density.exponent, 0.5 * root * fraction};
    return {centralShare, density, 0.5 - upper.Value(), upper};
}

// P(0 < T < t) over the scaled density. The probability is half the beta distribution function with
// parameters 1/2 and df / 2 at the central share, whose power series has positive terms only (Abramowitz and
// Stegun 1964, 26.5.4).
double StudentT::CentralSeries(double centralShare) const noexcept
{
    // The slowest case where IsCentral holds, df = 6 and t^2 = 6, takes 62.
    constexpr double maxTerms = 200.0;
    double sum = 1.0;
    double term = 1.0;
    for (double n = 0.5; n < maxTerms && term > 0.25 * roundingUnit * sum; ++n) {
        term *= (half_ + n) / (1.0 + n) * centralShare;
        sum += term;
    }
    return sum;
}

// Iterates on t in relative terms. With S = P(T > t), the Taylor series of the inverse function about S(t)
// gives the quantile as t (1 + r + p r^2 / 2 + (2 p^2 + p') r^3 / 6 + ...), where r = (S(t) - q) / (t f(t)),
// p = -t f'(t) / f(t) and p' = -t^2 (f'(t) / f(t))'. A step leaves of a relative error e the order of
// e (e scale)^3 with scale = p + sqrt(p), so that it also tells when it was the last.
double StudentT::UpperQuantile(double q, double eps, double accuracy) const noexcept
{
    // From these starts one step is the rule, and a third was never seen.
    constexpr int maxSteps = 10;
    double t = QuantileStart(q);
    for (int step = 0; step < maxSteps && std::isfinite(t); ++step) {
        const Point point = Evaluate(t);
        const double error = IsCentral(t) ? (0.5 - q) - point.central : point.upper.Value() - q;
        const double r = error / point.scaledDensity.Value();
        const double p = (df_ + 1.0) * point.centralShare;
        const double pPrime = p * (1.0 - 2.0 * point.centralShare);
        const double change = r * (1.0 + r * (0.5 * p + r * (2.0 * p * p + pPrime) / 6.0));
        t += t * std::clamp(change, -0.5, 1.0); // the bounds keep t positive whatever the start
        const double scaled = std::fabs(r) * (p + std::sqrt(p));
        const double remaining = std::fabs(r) * scaled * scaled * scaled;
        if (remaining <= std::max({roundingUnit, accuracy, eps / t}))
            break;
    }
    return t;
}

// Far out, P(T > t) = C x^a (1 + a x / (2 (a + 1)) + ...) with x = df / (df + t^2) and a = df / 2, solved for
// x by one substitution. Nearer the centre a light tail starts from the normal quantile; a heavy one, of
// which that is no image, from the density at 0.
double StudentT::QuantileStart(double q) const noexcept
{
    const double logLeading = (std::log(q) - logConstant_ + 0.5 * std::log(df_)) / half_;
    const double leading = std::exp(logLeading);
    const bool heavyTailed = df_ < 2.0;
    if (leading > (heavyTailed ? 0.5 : 0.15))
        return heavyTailed ? CentralStart(q) : NormalStart(q);
    const double logShare = logLeading - std::log1p(half_ / (2.0 * (half_ + 1.0)) * leading) / half_;
    return std::sqrt(df_ * -std::expm1(logShare)) * std::exp(-0.5 * logShare);
}

// Two terms of the power series about 0.
double StudentT::CentralStart(double q) const noexcept
{
    const double t = (0.5 - q) * std::exp(-logConstant_);
    return t * (1.0 + (df_ + 1.0) / (6.0 * df_) * t * t);
}

// Hill (1970, Communications of the ACM 13, 619-620): from the normal quantile z to t, with the denominator
// of the last term raised so that the expansion stays tame in the far tail.
double StudentT::NormalStart(double q) const noexcept
{
    const double z = -NormalQuantile(q);
    const double s = z * z;
    const double a = df_ - 0.5;
    const double b = 48.0 * a * a;
    const double c = b + 0.8 * s * s + 100.0;
    const double last = (((0.4 * s + 6.3) * s + 36.0) * s + 94.5) / c;
    const double w = z * (1.0 + (last - s - 3.0) / b);
    return std::sqrt(df_ * std::expm1(w * w / a));
}

} // namespace distribution
