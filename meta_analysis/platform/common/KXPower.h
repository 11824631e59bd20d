#pragma once

#include "meta_analysis/platform/common/KXStatus.h"

/// Arithmetic that knows missing values.
///
/// A missing operand makes the result missing, and otherwise a NaN operand makes it NaN; both are OK.
/// Operands whose result no double can hold (overflow, a fractional power of a negative number, or the
/// number that is reserved for missing) give the error OVERFLOW_CODE and leave `out` unchanged. A result
/// too small for a double is 0 or subnormal, and OK.
class KXPower
{
public:
    static constexpr int OVERFLOW_CODE = 940001;

    /// out = e^x. The exponential of +inf is an overflow, that of -inf is 0.
    static KXStatus Exponent(double x, double& out) noexcept;

    /// out = base^exponent. Infinite operands follow std::pow.
    static KXStatus Power(double base, double exponent, double& out) noexcept;

    /// out = left * right. Infinite operands follow IEEE arithmetic.
    static KXStatus Multiply(double left, double right, double& out) noexcept;
};
