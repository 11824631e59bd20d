#pragma once

#include "meta_analysis/pooling/MATau2Estimate.h"

namespace MA_NAMESPACE {

/// What is not greater than 0, a NaN included, becomes 0.
inline double TruncateAtZero(double tau2)
{
    return tau2 > 0.0 ? tau2 : 0.0;
}

/// The estimate of a closed formula, which can be negative.
inline MATau2Estimate ClosedFormTau2(double tau2)
{
    MATau2Estimate estimate;
    estimate.tau2 = TruncateAtZero(tau2);
    return estimate;
}

inline MATau2Estimate FailedTau2(const KXStatus& status)
{
    MATau2Estimate failed;
    failed.status = status;
    return failed;
}

} // namespace MA_NAMESPACE
