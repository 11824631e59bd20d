#pragma once

#include "meta_analysis/platform/common/KXMV.h"

namespace MA_NAMESPACE {

/// A p-value and its decimal logarithm, which is right also where the p-value underflows to 0.
struct MAPValue
{
    double value = KXMV::Missing();
    double log10 = KXMV::Missing();
};

} // namespace MA_NAMESPACE
