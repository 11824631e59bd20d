#pragma once

// Brings along the standard headers that nearly every test needs.

#include "meta_analysis/platform/common/KXMV.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iomanip>
#include <limits>
#include <string>
#include <vector>

constexpr double missing = KXMV::Missing();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double machineEpsilon = std::numeric_limits<double>::epsilon();

/// How often a random check is repeated; less often under the sanitizers, which slow it down ten times.
constexpr unsigned Repetitions(unsigned plain)
{
#ifdef __SANITIZE_ADDRESS__
    return plain / 10;
#else
    return plain;
#endif
}

/// A failure that shows all digits.
inline testing::AssertionResult Differs(double actual, double expected)
{
    return testing::AssertionFailure() << std::setprecision(17) << "is " << actual << ", expected "
                                       << expected << ", difference " << actual - expected;
}

/// Whether both are the same number, infinity, NaN or missing value.
inline testing::AssertionResult Same(double actual, double expected)
{
    if (actual == expected || (std::isnan(actual) && std::isnan(expected)))
        return testing::AssertionSuccess();
    return Differs(actual, expected);
}

/// Whether two numbers agree to `tolerance` relative to the expected one, or to `scale` where that is
/// larger: the size of the terms of which the number is a difference. Values that no tolerance can relate
/// (infinite, NaN, missing) must be the same.
inline testing::AssertionResult Close(double actual, double expected, double tolerance, double scale = 0.0)
{
    if (!std::isfinite(expected) || KXMV::IsMissing(expected) || KXMV::IsMissing(actual))
        return Same(actual, expected);
    if (std::abs(actual - expected) <= tolerance * std::max(std::abs(expected), scale))
        return testing::AssertionSuccess();
    return Differs(actual, expected);
}

/// The same, entry by entry.
inline testing::AssertionResult Close(const std::vector<double>& actual, const std::vector<double>& expected,
                                      double tolerance, double scale = 0.0)
{
    if (actual.size() != expected.size())
        return testing::AssertionFailure() << actual.size() << " entries, expected " << expected.size();
    for (std::size_t i = 0; i < actual.size(); ++i) {
        const testing::AssertionResult result = Close(actual[i], expected[i], tolerance, scale);
        if (!result)
            return testing::AssertionFailure() << "entry " << i << " " << result.message();
    }
    return testing::AssertionSuccess();
}

inline testing::AssertionResult Same(const std::vector<double>& actual, const std::vector<double>& expected)
{
    return Close(actual, expected, 0.0);
}
