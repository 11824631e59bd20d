#pragma once

#include "host/text/Choice.h"

#include "meta_analysis/settings/MAChoiceNames.h"
#include "meta_analysis/settings/MAConst.h"

#include <array>

namespace host {

// The words that options have for the values of the library's enumerations; the first is the default of most.
// The library has those that its C interface takes as well.

/// The outcomes of ready-made effect sizes.
inline constexpr std::array OUTCOME_CHOICES{
    MAChoice{"continuous", MAConst::OUTCOME_CONTINUOUS},
    MAChoice{"binary", MAConst::OUTCOME_BINARY},
};

inline constexpr const auto& MODEL_CHOICES = MA_NAMESPACE::modelNames;

inline constexpr std::array WEIGHT_CHOICES{
    MAChoice{"inverse-variance", MAConst::WEIGHT_INVERSE_VARIANCE},
    MAChoice{"mantel-haenszel", MAConst::WEIGHT_BINARY_FIXED},
};
static_assert(HasEachEnumerator<WEIGHT_CHOICES>());

inline constexpr const auto& TAU2_SEARCH_CHOICES = MA_NAMESPACE::tau2SearchNames;

inline constexpr const auto& TAU2_INTERVAL_CHOICES = MA_NAMESPACE::tau2IntervalNames;

inline constexpr const auto& PREDICTION_CHOICES = MA_NAMESPACE::predictionNames;

inline constexpr const auto& KNAPP_HARTUNG_CHOICES = MA_NAMESPACE::knappHartungNames;

inline constexpr const auto& ZERO_CELL_CHOICES = MA_NAMESPACE::zeroCellNames;

inline constexpr std::array POOLED_ZERO_CELL_CHOICES{
    MAChoice{"if-needed", MAConst::POOLED_ZERO_CELLS_IF_NEEDED},
    MAChoice{"as-studies", MAConst::POOLED_ZERO_CELLS_AS_STUDIES},
    MAChoice{"none", MAConst::POOLED_ZERO_CELLS_NONE},
};
static_assert(HasEachEnumerator<POOLED_ZERO_CELL_CHOICES>());

inline constexpr const auto& GLASS_GROUP_CHOICES = MA_NAMESPACE::glassGroupNames;

inline constexpr std::array TRIM_FILL_CHOICES{
    MAChoice{"linear", MAConst::TRIM_LINEAR},
    MAChoice{"run", MAConst::TRIM_RUN},
    MAChoice{"quadratic", MAConst::TRIM_QUADRATIC},
};
static_assert(HasEachEnumerator<TRIM_FILL_CHOICES>());

inline constexpr std::array TRIM_SIDE_CHOICES{
    MAChoice{"auto", MAConst::TRIM_SIDE_AUTO},
    MAChoice{"1", MAConst::TRIM_SIDE_LARGEST},
    MAChoice{"2", MAConst::TRIM_SIDE_SMALLEST},
};
static_assert(HasEachEnumerator<TRIM_SIDE_CHOICES>());

inline constexpr std::array SANDWICH_CHOICES{
    MAChoice{"cr2", MAConst::SANDWICH_CR2},
    MAChoice{"cr1", MAConst::SANDWICH_CR1},
    MAChoice{"cr0", MAConst::SANDWICH_CR0},
};
static_assert(HasEachEnumerator<SANDWICH_CHOICES>());

inline constexpr const auto& SWITCH_CHOICES = MA_NAMESPACE::switchNames;

inline constexpr std::array FUNNEL_Y_CHOICES{
    MAChoice{"std-error", MAConst::FUNNEL_STD_ERROR},
    MAChoice{"precision", MAConst::FUNNEL_PRECISION},
    MAChoice{"variance", MAConst::FUNNEL_VARIANCE},
    MAChoice{"inverse-variance", MAConst::FUNNEL_INVERSE_VARIANCE},
};
static_assert(HasEachEnumerator<FUNNEL_Y_CHOICES>());

inline constexpr std::array CONTOUR_CHOICES{
    MAChoice{"none", MAConst::CONTOUR_NONE},
    MAChoice{"two-sided", MAConst::CONTOUR_TWO_SIDED},
    MAChoice{"upper", MAConst::CONTOUR_UPPER},
    MAChoice{"lower", MAConst::CONTOUR_LOWER},
};
static_assert(HasEachEnumerator<CONTOUR_CHOICES>());

} // namespace host
