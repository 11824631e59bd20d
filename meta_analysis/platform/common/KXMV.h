#pragma once

#include <limits>

/// The missing value: one reserved finite double that stands for "no value".
///
/// It is finite on purpose, so that it orders, compares and copies like any number; a NaN is not
/// missing. Test for it before deriving anything from a value: arithmetic on it looks plausible.
class KXMV
{
public:
    static constexpr double Missing() noexcept { return std::numeric_limits<double>::lowest(); }
    static constexpr bool IsMissing(double x) noexcept { return x == Missing(); }
};
