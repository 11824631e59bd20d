#pragma once

#include "host/text/Choice.h"

#include "meta_analysis/settings/MAConst.h"

#include <array>
#include <string_view>

namespace host {

/// A regression-based small-study test, with its number and its word at --small-study-test.
struct SmallStudyTest
{
    std::string_view name;
    const char* word;
    MAConst::RegBaseTestType value;
    const char* description; ///< what the test regresses on what
    const char* covariate;   ///< the latter alone
};

/// Each test stands here once: options, reports and JSON read this table.
inline constexpr std::array SMALL_STUDY_TESTS{
    SmallStudyTest{"0", "egger", MAConst::REG_TEST_EFFECT_ON_STD_ERROR, "effect on standard error",
                   "standard error"},
    SmallStudyTest{"1", "harbord", MAConst::REG_TEST_SCORE_VARIANCE,
                   "odds-ratio score over its variance on standard error", "standard error"},
    SmallStudyTest{"2", "harbord-risk-ratio", MAConst::REG_TEST_SCORE_CONTROL,
                   "risk-ratio score over its variance on standard error", "standard error"},
    SmallStudyTest{"3", "peters", MAConst::REG_TEST_EFFECT_ON_SIZE, "effect on 1 / sample size",
                   "1 / sample size"},
};
static_assert(HasEachEnumerator<SMALL_STUDY_TESTS>());

} // namespace host
