#pragma once

#include "meta_analysis/inference/MAInformationCriteria.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/settings/MAConst.h"

namespace MA_NAMESPACE {

/// What goes with an estimate of the between-study variance: how it was found, its interval, and the
/// likelihood of the model at it.
struct MATau2Results
{
    MAConst::TAU2CONVERGENCE convergence = MAConst::TAU2_CLOSED_FORM;
    int evaluations = 0;
    /// Whether tau² of scoring is off the one that the global search proves; false where that is not checked.
    bool isDoubtful = false;
    double lower = KXMV::Missing();
    double upper = KXMV::Missing();
    MAInformationCriteria information;
};

} // namespace MA_NAMESPACE
