#pragma once

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/settings/MAConst.h"
#include "meta_analysis/settings/MAEstimators.h"
#include "meta_analysis/settings/MAStatusCode.h"

namespace MA_NAMESPACE {

// What a call for many sets refuses, whether it pools or regresses them.

inline bool IsBetween(int value, int first, int last)
{
    return value >= first && value <= last;
}

inline bool IsKnown(MAConst::TAU2ESTIMATOR estimator)
{
    return IsEstimator(estimator);
}

inline bool IsKnown(MAConst::TAU2SEARCH search)
{
    return IsBetween(search, MAConst::TAU2_SEARCH_SCORING, MAConst::TAU2_SEARCH_GLOBAL);
}

inline bool IsKnown(MAConst::KNAPPHADJTYPE adjustment)
{
    return IsBetween(adjustment, MAConst::KNAPP_HARTUNG_NONE, MAConst::KNAPP_HARTUNG_IF_HETEROGENEOUS);
}

inline bool IsKnown(MAConst::TAU2INTERVAL interval)
{
    return IsBetween(interval, MAConst::TAU2_INTERVAL_NONE, MAConst::TAU2_INTERVAL_PROFILE_LIKELIHOOD);
}

/// Errors: BULK_ALPHA_OUTSIDE unless 0 < alpha < 1; BULK_CHOICE_UNKNOWN unless the other choices are known.
inline KXStatus CheckChoices(double alpha, bool areOthersKnown)
{
    if (!(alpha > 0.0 && alpha < 1.0))
        return KXStatus(MAStatusCode::BULK_ALPHA_OUTSIDE);
    return areOthersKnown ? KXStatus() : KXStatus(MAStatusCode::BULK_CHOICE_UNKNOWN);
}

} // namespace MA_NAMESPACE
