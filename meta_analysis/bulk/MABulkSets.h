#pragma once

#include <cstddef>

namespace MA_NAMESPACE {

// Many sets of studies, each of which is an analysis of its own, in arrays of the caller. Effects y and
// within-study variances v are on the scale of the analysis. A study whose effect or variance is NaN is not
// in the set. One that cannot be pooled otherwise (an infinite effect, a variance that is not positive and
// finite with a finite inverse) is left out of the set and counted in `MABulkResults::leftOut`.

/// Sets of different lengths, one behind the other: set s has the studies `offsets[s]` to `offsets[s + 1]`
/// - 1.
struct MARaggedSets
{
    const double* effectSizes = nullptr;
    const double* variances = nullptr;
    const std::size_t* offsets = nullptr; ///< `setCount` + 1 positions that do not fall
    std::size_t setCount = 0;
};

/// Values of studies x sets anywhere in memory; strides count values, and may be negative.
struct MAStridedBlock
{
    const double* values = nullptr; ///< of the first study of the first set
    std::ptrdiff_t studyStride = 0;
    std::ptrdiff_t setStride = 0;

    const double& At(std::size_t study, std::size_t set) const
    {
        return values[static_cast<std::ptrdiff_t>(study) * studyStride +
                      static_cast<std::ptrdiff_t>(set) * setStride];
    }
};

/// Sets over the same studies; NaN where a study is not in a set.
struct MABlockSets
{
    MAStridedBlock effectSizes;
    MAStridedBlock variances;
    std::size_t studyCount = 0;
    std::size_t setCount = 0;
};

} // namespace MA_NAMESPACE
