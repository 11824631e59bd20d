#pragma once

#include <cstddef>
#include <span>

namespace MA_NAMESPACE {

/// Effect sizes y and their within-study variances v, one entry per study in each, on the scale of the
/// analysis. Both are the caller's.
struct MAEffects
{
    std::span<const double> effectSizes;
    std::span<const double> variances;

    std::size_t Count() const { return effectSizes.size(); }
    bool HaveEqualLengths() const { return effectSizes.size() == variances.size(); }
};

} // namespace MA_NAMESPACE
