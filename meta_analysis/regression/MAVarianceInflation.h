#pragma once

#include "meta_analysis/regression/MARegFit.h"

#include <vector>

namespace MA_NAMESPACE {

/// Generalized variance inflation of the effect of each parameter, as `MARegOutputStats` defines it.
///
/// With V the covariance of the coefficients beside the intercept it is det V₁₁ det (V⁻¹)₁₁. With V = U'U and
/// a triangular U both determinants are those of columns, of U and of U'⁻¹, taken by their triangular
/// factors: no inverse of V is formed. O(p³).
std::vector<double> VarianceInflation(const MARegFit& fit);

} // namespace MA_NAMESPACE
