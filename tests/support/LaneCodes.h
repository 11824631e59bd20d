#pragma once

#include "meta_analysis/bulk/lanes/MALaneCode.h"

#include <vector>

/// What is compiled for registers of each width that this processor has.
inline std::vector<const MA_NAMESPACE::MALaneCode*> LaneCodes()
{
    std::vector<const MA_NAMESPACE::MALaneCode*> codes = {&MA_NAMESPACE::laneCode128,
                                                          &MA_NAMESPACE::WidestLaneCode()};
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2"))
        codes.push_back(&MA_NAMESPACE::laneCode256);
#endif
    return codes;
}
