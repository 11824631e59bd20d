#include "meta_analysis/regression/MAInverseRoot.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace MA_NAMESPACE {

namespace {

/// K(k) = π / (2 AGM(1, k')), from the complementary modulus k'. The mean converges quadratically.
double EllipticIntegral(double complementaryModulus)
{
    double a = 1.0;
    double b = complementaryModulus;
    while (a - b > 1e-15 * a) {
        const double mean = 0.5 * (a + b);
        b = std::sqrt(a * b);
        a = mean;
    }
    return std::numbers::pi / (a + b);
}

/// Jacobi's function sc(u | k') for u up to half of K', by the theta functions of the nome q of k, at the
/// argument v = πu / (2K). For k up to 1/2, q is below 0.018, and the first term left out is below 1e-18.
double Sc(double v, double nome, double modulus)
{
    double numerator = 0.0;
    double denominator = 1.0;
    for (int n = 0; n < 4; ++n) {
        const double sign = n % 2 == 0 ? 1.0 : -1.0;
        numerator += sign * std::pow(nome, n * (n + 1)) * std::sinh((2 * n + 1) * v);
        denominator -= sign * 2.0 * std::pow(nome, (n + 1) * (n + 1)) * std::cosh(2 * (n + 1) * v);
    }
    return 2.0 * std::pow(nome, 0.25) / std::sqrt(modulus) * numerator / denominator;
}

} // namespace

/// The nodes beyond half of K' mirror those before it: sc(K' - u) = 1 / (k sc(u)).
std::vector<MAInverseRootTerm> InverseRootTerms(double smallest, double largest)
{
    constexpr double accuracy = 40.5;      // -log of 1e-17, and of the factor 4 of the rule's error
    constexpr double largestRatio = 1e200; // beyond it the terms would have no end
    const double modulus = std::sqrt(smallest / std::clamp(largest, 4.0 * smallest, largestRatio * smallest));
    const double quarter = EllipticIntegral(std::sqrt(1.0 - modulus * modulus)); // K
    const double conjugate = EllipticIntegral(modulus);                          // K'
    const double nome = std::exp(-std::numbers::pi * conjugate / quarter);
    const double half = std::ceil(accuracy * conjugate / (4.0 * std::numbers::pi * quarter));
    const double step = conjugate / (2.0 * half);
    std::vector<MAInverseRootTerm> terms;
    const auto add = [&](double s) {
        const double slope = std::sqrt((1.0 + s * s) * (1.0 + modulus * s * modulus * s));
        terms.push_back({smallest * s * s, 2.0 / std::numbers::pi * step * std::sqrt(smallest) * slope});
    };
    for (std::size_t j = 0; j < static_cast<std::size_t>(half); ++j) {
        const double u = (static_cast<double>(j) + 0.5) * step;
        const double s = Sc(std::numbers::pi * u / (2.0 * quarter), nome, modulus);
        add(s);
        add(1.0 / (modulus * s));
    }
    return terms;
}

} // namespace MA_NAMESPACE
