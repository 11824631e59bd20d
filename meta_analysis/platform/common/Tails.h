#pragma once

#include <algorithm>
#include <cmath>

namespace distribution {

/// The probability factor * exp(exponent). Its logarithm is right also where the probability underflows.
struct ScaledProbability
{
    double exponent;
    double factor;

    /// The exponential is multiplied in two equal parts: it may underflow where the product does not.
    /// Rounding may carry the product beyond 1.
    double Value() const noexcept
    {
        const double part = std::exp(0.5 * exponent);
        return std::min(part * factor * part, 1.0);
    }

    double Log() const noexcept { return std::min(exponent + std::log(factor), 0.0); }
};

/// The probabilities below and above a point. One of the two is computed to full relative precision, the
/// other one is its complement to 1 and is never much the smaller one.
struct Tails
{
    ScaledProbability computed;
    bool isLower; ///< whether `computed` is the probability below

    double Lower() const noexcept { return isLower ? computed.Value() : 1.0 - computed.Value(); }
    double Upper() const noexcept { return isLower ? 1.0 - computed.Value() : computed.Value(); }
    double LogUpper() const noexcept { return isLower ? std::log1p(-computed.Value()) : computed.Log(); }
};

} // namespace distribution
