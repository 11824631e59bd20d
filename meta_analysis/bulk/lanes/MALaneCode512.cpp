// For processors with AVX-512.

#include "meta_analysis/bulk/lanes/MALaneCode.h"
#include "meta_analysis/bulk/lanes/MALaneFitKernelsOf.h"
#include "meta_analysis/bulk/lanes/MALaneKernelsOf.h"

#if defined(__x86_64__)
namespace MA_NAMESPACE {

using Lanes512 = double __attribute__((vector_size(64)));
constinit const MALaneCode laneCode512 = {MALaneKernelsOf<Lanes512>::kernels, laneFitKernelsOf<Lanes512>};

} // namespace MA_NAMESPACE
#endif
