#pragma once

#include "host/text/Choice.h"

#include <array>

namespace host {

/// Whose forest plots this one looks like.
enum class ForestLayout
{
    PLAIN,
    REVMAN, ///< Cochrane reviews
    BMJ,
    JAMA
};

inline constexpr std::array FOREST_LAYOUT_CHOICES{
    MAChoice{"plain", ForestLayout::PLAIN},
    MAChoice{"revman", ForestLayout::REVMAN},
    MAChoice{"bmj", ForestLayout::BMJ},
    MAChoice{"jama", ForestLayout::JAMA},
};
static_assert(HasEachEnumerator<FOREST_LAYOUT_CHOICES>());

/// Whose estimates the forest plot has.
enum class ForestModels
{
    ANALYSED, ///< the model of the analysis
    BOTH      ///< that, and the other one of fixed effect and random effects
};

inline constexpr std::array FOREST_MODELS_CHOICES{
    MAChoice{"analysed", ForestModels::ANALYSED},
    MAChoice{"both", ForestModels::BOTH},
};
static_assert(HasEachEnumerator<FOREST_MODELS_CHOICES>());

enum class PredictionLook
{
    BAR,
    DIAMOND,
    NONE
};

inline constexpr std::array PREDICTION_LOOK_CHOICES{
    MAChoice{"bar", PredictionLook::BAR},
    MAChoice{"diamond", PredictionLook::DIAMOND},
    MAChoice{"none", PredictionLook::NONE},
};
static_assert(HasEachEnumerator<PREDICTION_LOOK_CHOICES>());

} // namespace host
