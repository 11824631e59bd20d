#pragma once

#include "meta_analysis/platform/common/KXMV.h"

#include <cmath>

namespace MA_NAMESPACE {

/// The inverse of any larger double is finite, that of this one is not.
constexpr double greatestWithoutInverse = 0x1p-1024;

/// Whether a study can be pooled: a finite effect size, and a variance whose inverse, the weight, is positive
/// and finite as well. Any other study would make every pooled number NaN.
inline bool IsPoolable(double effectSize, double variance) noexcept
{
    return std::isfinite(effectSize) && !KXMV::IsMissing(effectSize) && variance > greatestWithoutInverse &&
           std::isfinite(variance);
}

} // namespace MA_NAMESPACE
