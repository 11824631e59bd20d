#pragma once

#include <vector>

namespace MA_NAMESPACE {

/// A term `weight` / (x + `shift`) of a sum that approximates 1 / sqrt(x).
struct MAInverseRootTerm
{
    double shift;
    double weight;
};

/// The terms of 1 / sqrt(x) for x between two positive numbers, with a relative error below 1e-16. They grow
/// in number with the logarithm of largest / smallest: 10 for a ratio of 4, 60 for one of 1e12.
///
/// 1 / sqrt(x) = (2 / π) ∫ dt / (x + t²) over t > 0, by the midpoint rule after the substitution
/// t = sqrt(smallest) sc(u | k'), k² = smallest / largest, which makes the integrand periodic in u and
/// analytic in the widest strip (Hale, Higham and Trefethen 2008, SIAM Journal on Numerical Analysis 46,
/// 2505-2523).
std::vector<MAInverseRootTerm> InverseRootTerms(double smallest, double largest);

} // namespace MA_NAMESPACE
