#include "meta_analysis/bulk/lanes/MALaneCode.h"

namespace MA_NAMESPACE {

const MALaneCode& WidestLaneCode()
{
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx512f"))
        return laneCode512;
    if (__builtin_cpu_supports("avx2"))
        return laneCode256;
#endif
    return laneCode128;
}

} // namespace MA_NAMESPACE
