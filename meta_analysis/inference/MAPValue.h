#pragma once

#include "meta_analysis/platform/common/KXMV.h"

#include <cmath>
#include <limits>

namespace MA_NAMESPACE {

/// A p-value with its decimal logarithm, which is right also where the p-value underflows to 0. Only there is
/// it stored: a cumulative analysis has more p-values than logarithms that a host asks for.
struct MAPValue
{
    /// Below it a p-value, twice a tail, has lost digits.
    static constexpr double tiny = 2.0 * std::numeric_limits<double>::min();

    double value = KXMV::Missing();
    double log10OfTiny = KXMV::Missing(); ///< log10 of a p-value below `tiny`; missing values are negative

    double Log10() const noexcept { return value < tiny ? log10OfTiny : std::log10(value); }
};

/// From getters: `log10()` is called only where it is stored.
template <class Log10>
MAPValue PValueOf(double value, Log10 log10)
{
    return value < MAPValue::tiny ? MAPValue{value, log10()} : MAPValue{value};
}

} // namespace MA_NAMESPACE
