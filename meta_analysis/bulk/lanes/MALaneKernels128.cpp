// For any processor: GCC and Clang make pairs of doubles of what it has.

#include "meta_analysis/bulk/lanes/MALaneKernelsOf.h"

namespace MA_NAMESPACE {

using Lanes128 = double __attribute__((vector_size(16)));
const MALaneKernels laneKernels128 = MALaneKernelsOf<Lanes128>::kernels;

} // namespace MA_NAMESPACE
