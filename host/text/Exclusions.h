#pragma once

#include "host/text/Choice.h"

#include "meta_analysis/settings/MAConst.h"

#include <array>

namespace host {

/// Why a record is no study, in words.
inline constexpr std::array EXCLUSIONS{
    Choice{"none", MAConst::EXCLUSION_NONE},
    Choice{"missing value", MAConst::EXCLUSION_MISSING_VALUE},
    Choice{"effect size or variance that cannot be pooled", MAConst::EXCLUSION_NOT_POOLABLE},
    Choice{"negative count", MAConst::EXCLUSION_NEGATIVE_COUNT},
    Choice{"more events than persons", MAConst::EXCLUSION_EVENTS_ABOVE_SIZE},
    Choice{"no persons", MAConst::EXCLUSION_NO_PERSONS},
    Choice{"zero cells in both groups", MAConst::EXCLUSION_ZERO_CELLS},
    Choice{"no events, or no non-events, in both groups", MAConst::EXCLUSION_DROPPED},
    Choice{"fewer than two persons in a group", MAConst::EXCLUSION_GROUP_TOO_SMALL},
    Choice{"variance, standard deviation or standard error not above 0",
           MAConst::EXCLUSION_SPREAD_NOT_POSITIVE},
    Choice{"minimum, quartiles, median and maximum not in ascending order",
           MAConst::EXCLUSION_SUMMARY_NOT_ASCENDING},
    Choice{"lower confidence limit not below the upper one", MAConst::EXCLUSION_LIMITS_NOT_ASCENDING},
    Choice{"estimate outside its confidence limits", MAConst::EXCLUSION_OUTSIDE_LIMITS},
    Choice{"confidence level not between 0 and 1", MAConst::EXCLUSION_LEVEL_OUTSIDE},
    Choice{"p-value not between 0 and 1", MAConst::EXCLUSION_P_VALUE_OUTSIDE},
    Choice{"estimate 0, to which no p-value gives a standard error", MAConst::EXCLUSION_ESTIMATE_ZERO},
    Choice{"ratio or confidence limit not above 0", MAConst::EXCLUSION_RATIO_NOT_POSITIVE},
    Choice{"risk difference beyond 1 or -1", MAConst::EXCLUSION_DIFFERENCE_IMPOSSIBLE},
    Choice{"no measure of spread", MAConst::EXCLUSION_NO_SPREAD_GIVEN},
    Choice{"person-time not above 0", MAConst::EXCLUSION_TIME_NOT_POSITIVE},
    Choice{"correlation not between -1 and 1", MAConst::EXCLUSION_CORRELATION_OUTSIDE},
};
static_assert(HasEachEnumerator<EXCLUSIONS>());

} // namespace host
