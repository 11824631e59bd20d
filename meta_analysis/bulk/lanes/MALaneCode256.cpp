// For processors with AVX2.

#include "meta_analysis/bulk/lanes/MALaneCode.h"
#include "meta_analysis/bulk/lanes/MALaneFitKernelsOf.h"
#include "meta_analysis/bulk/lanes/MALaneKernelsOf.h"

#if defined(__x86_64__)
namespace MA_NAMESPACE {

using Lanes256 = double __attribute__((vector_size(32)));
constinit const MALaneCode laneCode256 = {MALaneKernelsOf<Lanes256>::kernels, laneFitKernelsOf<Lanes256>};

} // namespace MA_NAMESPACE
#endif
