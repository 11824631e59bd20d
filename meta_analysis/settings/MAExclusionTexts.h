#pragma once

#include "meta_analysis/settings/MAChoice.h"
#include "meta_analysis/settings/MAConst.h"

#include <array>

namespace MA_NAMESPACE {

/// Why a record is no study, in words.
inline constexpr std::array exclusionTexts{
    MAChoice{"none", MAConst::EXCLUSION_NONE},
    MAChoice{"missing value", MAConst::EXCLUSION_MISSING_VALUE},
    MAChoice{"effect size or variance that cannot be pooled", MAConst::EXCLUSION_NOT_POOLABLE},
    MAChoice{"negative count", MAConst::EXCLUSION_NEGATIVE_COUNT},
    MAChoice{"more events than persons", MAConst::EXCLUSION_EVENTS_ABOVE_SIZE},
    MAChoice{"no persons", MAConst::EXCLUSION_NO_PERSONS},
    MAChoice{"zero cells in both groups", MAConst::EXCLUSION_ZERO_CELLS},
    MAChoice{"no events, or no non-events, in both groups", MAConst::EXCLUSION_DROPPED},
    MAChoice{"fewer than two persons in a group", MAConst::EXCLUSION_GROUP_TOO_SMALL},
    MAChoice{"variance, standard deviation or standard error not above 0",
             MAConst::EXCLUSION_SPREAD_NOT_POSITIVE},
    MAChoice{"minimum, quartiles, median and maximum not in ascending order",
             MAConst::EXCLUSION_SUMMARY_NOT_ASCENDING},
    MAChoice{"lower confidence limit not below the upper one", MAConst::EXCLUSION_LIMITS_NOT_ASCENDING},
    MAChoice{"estimate outside its confidence limits", MAConst::EXCLUSION_OUTSIDE_LIMITS},
    MAChoice{"confidence level not between 0 and 1", MAConst::EXCLUSION_LEVEL_OUTSIDE},
    MAChoice{"p-value not between 0 and 1", MAConst::EXCLUSION_P_VALUE_OUTSIDE},
    MAChoice{"estimate 0, to which no p-value gives a standard error", MAConst::EXCLUSION_ESTIMATE_ZERO},
    MAChoice{"ratio or confidence limit not above 0", MAConst::EXCLUSION_RATIO_NOT_POSITIVE},
    MAChoice{"risk difference beyond 1 or -1", MAConst::EXCLUSION_DIFFERENCE_IMPOSSIBLE},
    MAChoice{"no measure of spread", MAConst::EXCLUSION_NO_SPREAD_GIVEN},
    MAChoice{"person-time not above 0", MAConst::EXCLUSION_TIME_NOT_POSITIVE},
    MAChoice{"correlation not between -1 and 1", MAConst::EXCLUSION_CORRELATION_OUTSIDE},
};
static_assert(HasEachEnumerator<exclusionTexts>());

} // namespace MA_NAMESPACE
