// For processors with AVX-512.

#include "meta_analysis/bulk/lanes/MALaneKernelsOf.h"

#if defined(__x86_64__)
namespace MA_NAMESPACE {

using Lanes512 = double __attribute__((vector_size(64)));
const MALaneKernels laneKernels512 = MALaneKernelsOf<Lanes512>::kernels;

} // namespace MA_NAMESPACE
#endif
