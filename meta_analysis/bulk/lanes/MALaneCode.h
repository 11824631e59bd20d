#pragma once

#include "meta_analysis/bulk/lanes/MALaneFits.h"
#include "meta_analysis/bulk/lanes/MALaneKernels.h"

namespace MA_NAMESPACE {

/// What is compiled for registers of one width.
struct MALaneCode
{
    MALaneKernels kernels;
    MALaneFitKernels fits;
};

/// That of the widest registers that this processor has.
const MALaneCode& WidestLaneCode();

extern const MALaneCode laneCode128;
#if defined(__x86_64__)
extern const MALaneCode laneCode256; ///< AVX2
extern const MALaneCode laneCode512; ///< AVX-512
#endif

} // namespace MA_NAMESPACE
