#pragma once

#include "meta_analysis/platform/common/KXMV.h"

#include <cmath>

namespace MA_NAMESPACE {

/// Whether a study can be pooled: a finite effect size, and a variance whose inverse, the weight, is positive
/// and finite as well. Any other study would make every pooled number NaN.
inline bool IsPoolable(double effectSize, double variance) noexcept
{
    return std::isfinite(effectSize) && !KXMV::IsMissing(effectSize) && variance > 0.0 &&
           std::isfinite(variance) && std::isfinite(1.0 / variance);
}

} // namespace MA_NAMESPACE
