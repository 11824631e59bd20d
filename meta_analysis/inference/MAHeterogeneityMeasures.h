#pragma once

#include "meta_analysis/platform/common/KXMV.h"

namespace MA_NAMESPACE {

/// H² and I² with their confidence intervals; missing where they are not defined.
struct MAHeterogeneityMeasures
{
    double h2 = KXMV::Missing();
    double h2Lower = KXMV::Missing();
    double h2Upper = KXMV::Missing();
    double i2 = KXMV::Missing();
    double i2Lower = KXMV::Missing();
    double i2Upper = KXMV::Missing();
};

} // namespace MA_NAMESPACE
