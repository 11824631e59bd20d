#pragma once

#include "meta_analysis/platform/common/KXMV.h"

#include <cmath>

namespace MA_NAMESPACE {

/// The ratio e^x of a value on the log scale: +infinity beyond the largest double, missing for a missing
/// value. `KXPower::Exponent` stores nothing on overflow, which would leave a ratio of 0 or a missing one.
inline double RatioOf(double logValue)
{
    return KXMV::IsMissing(logValue) ? logValue : std::exp(logValue);
}

} // namespace MA_NAMESPACE
