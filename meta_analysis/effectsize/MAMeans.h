#pragma once

#include "meta_analysis/effectsize/MAMeansChoice.h"

#include <cmath>

namespace MA_NAMESPACE {

/// Sizes, means and standard deviations of the treatment and control groups of one study.
struct MAMeans
{
    double nt;
    double nc;
    double xt;
    double xc;
    double st;
    double sc;

    double Size() const { return nt + nc; }
    double Difference() const { return xt - xc; }
    double PooledVariance() const { return (sc * sc * (nc - 1.0) + st * st * (nt - 1.0)) / (nc + nt - 2.0); }
    /// Variance of a standardised difference of 0.
    double NullVariance() const { return Size() / (nt * nc); }
    double CohensD() const { return Difference() / std::sqrt(PooledVariance()); }
};

struct MAMeansEffect
{
    double effect;
    double variance;
};

bool IsMeasure(MAConst::CONTESTYPE measure);

/// The effect of one study and its variance. Standard deviations of 0 and groups of size 1 give infinities or
/// NaN, and so does a measure outside the enumeration.
MAMeansEffect EffectOf(const MAMeans& study, const MAMeansChoice& choice);

} // namespace MA_NAMESPACE
