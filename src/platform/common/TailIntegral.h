#pragma once

#include <algorithm>
#include <array>
#include <cmath>

namespace distribution {

struct GaussNode { double abscissa; double weight; };

inline constexpr std::array<GaussNode, 12> gaussNodes = {{
{0.99518721999702136018, 0.012341229799987199547},
{0.9747285559713094982, 0.028531388628933663181},
{0.93827455200273275852, 0.044277438817419806169},
{0.88641552700440103421, 0.059298584915436780746},
{0.82000198597390292195, 0.073346481411080305734},
{0.74012419157855436424, 0.086190161531953275917},
{0.64809365193697556925, 0.09761865210411388827},
{0.54542147138883953566, 0.10744427011596563478},
{0.43379350762604513849, 0.11550566805372560135},
{0.31504267969616337439, 0.1216704729278033912},
{0.19111886747361630916, 0.12583745634682829612},
{0.064056892862605626085, 0.12793819534675215697}}};

template <class Exponent>
double TailIntegral(double slope, double curvature, Exponent exponent) noexcept
{
    constexpr double cut = 42.0;
    const double length = std::min(1.0, 2.0 * cut / (slope + std::sqrt(slope * slope + 2.0 * cut * curvature)));
    const double half = 0.5 * length;
    double sum = 0.0;
    for (const GaussNode& node : gaussNodes) {
        const double left = std::exp(-exponent(half * (1.0 - node.abscissa)));
        const double right = std::exp(-exponent(half * (1.0 + node.abscissa)));
        sum += node.weight * (left + right);
    }
    return half * sum;
}

} // namespace distribution
