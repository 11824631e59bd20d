#include "meta_analysis/bulk/lanes/MALaneKernels.h"

namespace MA_NAMESPACE {

const MALaneKernels& WidestLaneKernels()
{
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx512f"))
        return laneKernels512;
    if (__builtin_cpu_supports("avx2"))
        return laneKernels256;
#endif
    return laneKernels128;
}

} // namespace MA_NAMESPACE
