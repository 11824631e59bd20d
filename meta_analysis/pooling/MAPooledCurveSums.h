#pragma once

#include "meta_analysis/pooling/MALikelihoodCurve.h"

#include <cstddef>

namespace MA_NAMESPACE {

// The sums of which `MAPooledCurve` is made, of doubles, or of vectors of doubles for several sets side by
// side.

/// Studies whose terms are added up before they are added to the total: rounding errors grow with this and
/// with the number of blocks, not with the number of studies.
constexpr std::size_t curveBlockSize = 256;

/// Sums over the studies but the reference, with weights w and effects d counted from the reference study,
/// whose own d is 0. One study after another: the terms wait for the division, not for each other.
template <class Number>
struct MASlopeSums
{
    Number w{};
    Number ww{};
    Number www{};
    Number wd{};
    Number wwd{};
    Number wwwd{};
    Number wwdd{};
    Number wwwdd{};

    void Add(const Number& weight, const Number& d)
    {
        const Number squared = weight * weight;
        const Number product = weight * d;
        const Number squaredProduct = weight * product;
        w += weight;
        ww += squared;
        www += squared * weight;
        wd += product;
        wwd += squaredProduct;
        wwwd += squared * product;
        wwdd += product * product;
        wwwdd += squaredProduct * product;
    }
    void Add(const MASlopeSums& block)
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

/// As `MASlopeSums`, for Q.
template <class Number>
struct MAQSums
{
    Number w{};
    Number ww{};
    Number wd{};
    Number wwd{};
    Number wdd{};
    Number wwdd{};

    void Add(const Number& weight, const Number& d)
    {
        const Number product = weight * d;
        w += weight;
        ww += weight * weight;
        wd += product;
        wwd += weight * product;
        wdd += product * d;
        wwdd += product * product;
    }
    void Add(const MAQSums& block)
    {
        w += block.w;
        ww += block.ww;
        wd += block.wd;
        wwd += block.wwd;
        wdd += block.wdd;
        wwdd += block.wwdd;
    }
};

/// With w0 the weight of the reference study, W the sum of all weights and m the mean of the effects d:
///     A = sum(w²(d - m)²),  tr P = sum'(w) - sum'(w²) / W + w0 sum'(w) / W,
/// the primed sums without the reference, of which no share of W exceeds 1/2. y'PPPy = z'Pz with z = Py =
/// w (d - m); as P takes no notice of a constant, z is counted from z0 = -m w0, where w0 alone would cancel.
template <class Number>
MALikelihoodTermsOf<Number> TermsOf(const MASlopeSums<Number>& s, const Number& w0, MALikelihoodType type)
{
    const Number w = w0 + s.w;
    const Number ww = w0 * w0 + s.ww;
    const Number perW = 1.0 / w;
    const Number m = s.wd * perW;

    MALikelihoodTermsOf<Number> terms;
    terms.fit = s.wwdd - 2.0 * m * s.wwd + m * m * ww;
    // Sums of w z², and of w z, with z counted from z0.
    const Number zz =
        s.wwwdd + 2.0 * m * (w0 * s.wwd - s.wwwd) + m * m * (w0 * (w0 * s.w - 2.0 * s.ww) + s.www);
    const Number z = s.wwd + m * (w0 * s.w - s.ww);
    terms.fitSlope = -2.0 * (zz - z * (z * perW));
    if (type == MALikelihoodType::Full) {
        terms.trace = w;
        terms.traceSlope = -ww;
        return terms;
    }
    const Number share0 = w0 * perW;
    const Number shareW = s.w * perW;
    const Number weightedShare = w0 * shareW;
    const Number shareWW = s.ww * perW;
    terms.trace = s.w - shareWW + weightedShare;
    terms.traceSlope = -(weightedShare * weightedShare + 2.0 * share0 * share0 * s.ww + s.ww -
                         2.0 * s.www * perW + shareWW * shareWW);
    return terms;
}

template <class Number>
MAGeneralizedQOf<Number> GeneralizedQOf(const MAQSums<Number>& s, const Number& w0)
{
    const Number m = s.wd / (w0 + s.w);
    return {s.wdd - m * s.wd, -(s.wwdd - 2.0 * m * s.wwd + m * m * (w0 * w0 + s.ww))};
}

} // namespace MA_NAMESPACE
