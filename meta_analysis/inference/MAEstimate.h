#pragma once

#include "meta_analysis/inference/MAPValue.h"
#include "meta_analysis/platform/common/KXMV.h"

namespace MA_NAMESPACE {

/// An estimate with its test and confidence interval, on the scale of the analysis. The statistic is z or t.
struct MAEstimate
{
    double estimate = KXMV::Missing();
    double variance = KXMV::Missing();
    double stdError = KXMV::Missing();
    double statistic = KXMV::Missing();
    MAPValue pValue;
    double ciLower = KXMV::Missing();
    double ciUpper = KXMV::Missing();
};

} // namespace MA_NAMESPACE
