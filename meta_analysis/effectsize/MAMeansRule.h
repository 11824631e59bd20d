#pragma once

#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/settings/MAConst.h"

namespace MA_NAMESPACE {

// Which groups' means make a study.

/// Why a group has no mean with a spread that can be used.
inline MAConst::EXCLUSION ReasonOfGroup(double size, double mean, double stdDev)
{
    if (KXMV::IsMissing(size) || KXMV::IsMissing(mean) || KXMV::IsMissing(stdDev))
        return MAConst::EXCLUSION_MISSING_VALUE;
    if (size < 2.0)
        return MAConst::EXCLUSION_GROUP_TOO_SMALL;
    return stdDev <= 0.0 ? MAConst::EXCLUSION_SPREAD_NOT_POSITIVE : MAConst::EXCLUSION_NONE;
}

/// A missing value of either group comes before what is wrong with the other.
inline MAConst::EXCLUSION ReasonOfStudy(MAConst::EXCLUSION treatment, MAConst::EXCLUSION control)
{
    if (treatment == MAConst::EXCLUSION_NONE || control == MAConst::EXCLUSION_MISSING_VALUE)
        return control;
    return treatment;
}

} // namespace MA_NAMESPACE
