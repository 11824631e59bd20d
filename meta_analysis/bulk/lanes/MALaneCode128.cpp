// For any processor: GCC and Clang make pairs of doubles of what it has.

#include "meta_analysis/bulk/lanes/MALaneCode.h"
#include "meta_analysis/bulk/lanes/MALaneFitKernelsOf.h"
#include "meta_analysis/bulk/lanes/MALaneKernelsOf.h"

namespace MA_NAMESPACE {

using Lanes128 = double __attribute__((vector_size(16)));
constinit const MALaneCode laneCode128 = {MALaneKernelsOf<Lanes128>::kernels, laneFitKernelsOf<Lanes128>};

} // namespace MA_NAMESPACE
