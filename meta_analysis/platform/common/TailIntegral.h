#pragma once

#include <algorithm>
#include <cmath>

namespace distribution {

struct GaussNode
{
    double abscissa;
    double weight;
};

/// Gauss-Legendre rule with 24 nodes on [-1, 1], the positive half; computed with 40 digits.
inline constexpr GaussNode gaussNodes[] = {
    {0.064056892862605626085, 0.12793819534675215697}, {0.19111886747361630916, 0.12583745634682829612},
    {0.31504267969616337439, 0.1216704729278033912},   {0.43379350762604513849, 0.11550566805372560135},
    {0.54542147138883953566, 0.10744427011596563478},  {0.64809365193697556925, 0.09761865210411388827},
    {0.74012419157855436424, 0.086190161531953275917}, {0.82000198597390292195, 0.073346481411080305734},
    {0.88641552700440103421, 0.059298584915436780746}, {0.93827455200273275852, 0.044277438817419806169},
    {0.9747285559713094982, 0.028531388628933663181},  {0.99518721999702136018, 0.012341229799987199547}};

/// Integral of exp(-exponent(v)) over v from 0 to 1, where the exponent is convex with exponent(0) = 0, the
/// slope and curvature given at 0, and large enough to leave nothing at 1.
///
/// This is the tail of a gamma or beta distribution with large parameters, relative to its density at the
/// start of the tail. Series and fractions need a number of terms there that grows like the root of the
/// parameters, this rule always 24: an integrand that falls from 1 to exp(-42), be it like exp(-v) or like
/// exp(-v^2), it integrates to 1e-16, and what lies beyond is below the rounding of the sum.
template <class Exponent>
double TailIntegral(double slope, double curvature, Exponent exponent) noexcept
{
    constexpr double cut = 42.0;
    const double root = std::sqrt(slope * slope + 2.0 * cut * curvature);
    const double half = std::min(0.5, cut / (slope + root));
    double sum = 0.0;
    for (const auto [abscissa, weight] : gaussNodes) {
        const double left = std::exp(-exponent(half * (1.0 - abscissa)));
        const double right = std::exp(-exponent(half * (1.0 + abscissa)));
        sum += weight * (left + right);
    }
    return half * sum;
}

} // namespace distribution
