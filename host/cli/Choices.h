#pragma once

#include "host/text/Choice.h"

#include "meta_analysis/settings/MAConst.h"

#include <array>

namespace host {

// The words that options have for the values of the library's enumerations; the first is the default of most.

/// The outcomes of ready-made effect sizes.
inline constexpr std::array OUTCOME_CHOICES{
    Choice{"continuous", MAConst::OUTCOME_CONTINUOUS},
    Choice{"binary", MAConst::OUTCOME_BINARY},
};

inline constexpr std::array MODEL_CHOICES{
    Choice{"random", MAConst::MODEL_RANDOM},
    Choice{"fixed", MAConst::MODEL_FIXED},
};
static_assert(HasEachEnumerator<MODEL_CHOICES>());

inline constexpr std::array WEIGHT_CHOICES{
    Choice{"inverse-variance", MAConst::WEIGHT_INVERSE_VARIANCE},
    Choice{"mantel-haenszel", MAConst::WEIGHT_BINARY_FIXED},
};
static_assert(HasEachEnumerator<WEIGHT_CHOICES>());

inline constexpr std::array TAU2_SEARCH_CHOICES{
    Choice{"global", MAConst::TAU2_SEARCH_GLOBAL},
    Choice{"scoring", MAConst::TAU2_SEARCH_SCORING},
};
static_assert(HasEachEnumerator<TAU2_SEARCH_CHOICES>());

inline constexpr std::array TAU2_INTERVAL_CHOICES{
    Choice{"q-profile", MAConst::TAU2_INTERVAL_Q_PROFILE},
    Choice{"profile-likelihood", MAConst::TAU2_INTERVAL_PROFILE_LIKELIHOOD},
    Choice{"none", MAConst::TAU2_INTERVAL_NONE},
};
static_assert(HasEachEnumerator<TAU2_INTERVAL_CHOICES>());

inline constexpr std::array PREDICTION_CHOICES{
    Choice{"t-k-2", MAConst::PREDICTION_T_K_MINUS_2},
    Choice{"t-k-1", MAConst::PREDICTION_T_K_MINUS_1},
    Choice{"normal", MAConst::PREDICTION_NORMAL},
};
static_assert(HasEachEnumerator<PREDICTION_CHOICES>());

inline constexpr std::array KNAPP_HARTUNG_CHOICES{
    Choice{"none", MAConst::KNAPP_HARTUNG_NONE},
    Choice{"adjusted", MAConst::KNAPP_HARTUNG_ADJUSTED},
    Choice{"truncated", MAConst::KNAPP_HARTUNG_TRUNCATED},
    Choice{"if-heterogeneous", MAConst::KNAPP_HARTUNG_IF_HETEROGENEOUS},
};
static_assert(HasEachEnumerator<KNAPP_HARTUNG_CHOICES>());

inline constexpr std::array ZERO_CELL_CHOICES{
    Choice{"each", MAConst::ZERO_ADJUST_EACH},
    Choice{"all-if-any", MAConst::ZERO_ADJUST_ALL_IF_ANY},
    Choice{"all", MAConst::ZERO_ADJUST_ALL},
    Choice{"none", MAConst::ZERO_ADJUST_NONE},
};
static_assert(HasEachEnumerator<ZERO_CELL_CHOICES>());

inline constexpr std::array POOLED_ZERO_CELL_CHOICES{
    Choice{"if-needed", MAConst::POOLED_ZERO_CELLS_IF_NEEDED},
    Choice{"as-studies", MAConst::POOLED_ZERO_CELLS_AS_STUDIES},
    Choice{"none", MAConst::POOLED_ZERO_CELLS_NONE},
};
static_assert(HasEachEnumerator<POOLED_ZERO_CELL_CHOICES>());

inline constexpr std::array GLASS_GROUP_CHOICES{
    Choice{"control", MAConst::GROUP_CONTROL},
    Choice{"treatment", MAConst::GROUP_TREATMENT},
};
static_assert(HasEachEnumerator<GLASS_GROUP_CHOICES>());

inline constexpr std::array TRIM_FILL_CHOICES{
    Choice{"linear", MAConst::TRIM_LINEAR},
    Choice{"run", MAConst::TRIM_RUN},
    Choice{"quadratic", MAConst::TRIM_QUADRATIC},
};
static_assert(HasEachEnumerator<TRIM_FILL_CHOICES>());

inline constexpr std::array TRIM_SIDE_CHOICES{
    Choice{"auto", MAConst::TRIM_SIDE_AUTO},
    Choice{"1", MAConst::TRIM_SIDE_LARGEST},
    Choice{"2", MAConst::TRIM_SIDE_SMALLEST},
};
static_assert(HasEachEnumerator<TRIM_SIDE_CHOICES>());

inline constexpr std::array SANDWICH_CHOICES{
    Choice{"cr2", MAConst::SANDWICH_CR2},
    Choice{"cr1", MAConst::SANDWICH_CR1},
    Choice{"cr0", MAConst::SANDWICH_CR0},
};
static_assert(HasEachEnumerator<SANDWICH_CHOICES>());

inline constexpr std::array SWITCH_CHOICES{
    Choice{"on", true},
    Choice{"off", false},
};

inline constexpr std::array FUNNEL_Y_CHOICES{
    Choice{"std-error", MAConst::FUNNEL_STD_ERROR},
    Choice{"precision", MAConst::FUNNEL_PRECISION},
    Choice{"variance", MAConst::FUNNEL_VARIANCE},
    Choice{"inverse-variance", MAConst::FUNNEL_INVERSE_VARIANCE},
};
static_assert(HasEachEnumerator<FUNNEL_Y_CHOICES>());

inline constexpr std::array CONTOUR_CHOICES{
    Choice{"none", MAConst::CONTOUR_NONE},
    Choice{"two-sided", MAConst::CONTOUR_TWO_SIDED},
    Choice{"upper", MAConst::CONTOUR_UPPER},
    Choice{"lower", MAConst::CONTOUR_LOWER},
};
static_assert(HasEachEnumerator<CONTOUR_CHOICES>());

} // namespace host
