#pragma once

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/settings/MAConst.h"

namespace MA_NAMESPACE {

/// The between-study variance, and how its estimation ended.
struct MATau2Estimate
{
    KXStatus status;
    double tau2 = -1.0; ///< >= 0; -1 before an estimation and after an error
    MAConst::TAU2CONVERGENCE convergence = MAConst::TAU2_CLOSED_FORM;
    int evaluations = 0; ///< of the likelihood's slope, or scoring iterations; 0 for a closed form
};

} // namespace MA_NAMESPACE
