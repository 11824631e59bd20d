#include "meta_analysis/bulk/lanes/MALaneFits.h"

namespace MA_NAMESPACE {

const MALaneFitKernels& WidestLaneFitKernels()
{
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx512f"))
        return laneFitKernels512;
    if (__builtin_cpu_supports("avx2"))
        return laneFitKernels256;
#endif
    return laneFitKernels128;
}

} // namespace MA_NAMESPACE
