#pragma once

#include "meta_analysis/settings/MAChoice.h"
#include "meta_analysis/settings/MAConst.h"

#include <array>

namespace MA_NAMESPACE {

// The words for the values of enumerations, in the C interface and in the options of hosts; the first is the
// default of most.

inline constexpr std::array modelNames{
    MAChoice{"random", MAConst::MODEL_RANDOM},
    MAChoice{"fixed", MAConst::MODEL_FIXED},
};
static_assert(HasEachEnumerator<modelNames>());

/// The estimators of the between-study variance.
inline constexpr std::array tau2Names{
    MAChoice{"reml", MAConst::TAU2_REML}, MAChoice{"he", MAConst::TAU2_HE}, MAChoice{"hs", MAConst::TAU2_HS},
    MAChoice{"dl", MAConst::TAU2_DL},     MAChoice{"sj", MAConst::TAU2_SJ}, MAChoice{"ml", MAConst::TAU2_ML},
    MAChoice{"eb", MAConst::TAU2_EB},
};
static_assert(HasEachEnumerator<tau2Names>());

/// Paule and Mandel's estimator, which is empirical Bayes under another name.
inline constexpr MAChoice pauleMandelName{"pm", MAConst::TAU2_EB};

inline constexpr std::array tau2SearchNames{
    MAChoice{"global", MAConst::TAU2_SEARCH_GLOBAL},
    MAChoice{"scoring", MAConst::TAU2_SEARCH_SCORING},
};
static_assert(HasEachEnumerator<tau2SearchNames>());

inline constexpr std::array knappHartungNames{
    MAChoice{"none", MAConst::KNAPP_HARTUNG_NONE},
    MAChoice{"adjusted", MAConst::KNAPP_HARTUNG_ADJUSTED},
    MAChoice{"truncated", MAConst::KNAPP_HARTUNG_TRUNCATED},
    MAChoice{"if-heterogeneous", MAConst::KNAPP_HARTUNG_IF_HETEROGENEOUS},
};
static_assert(HasEachEnumerator<knappHartungNames>());

inline constexpr std::array tau2IntervalNames{
    MAChoice{"q-profile", MAConst::TAU2_INTERVAL_Q_PROFILE},
    MAChoice{"profile-likelihood", MAConst::TAU2_INTERVAL_PROFILE_LIKELIHOOD},
    MAChoice{"none", MAConst::TAU2_INTERVAL_NONE},
};
static_assert(HasEachEnumerator<tau2IntervalNames>());

inline constexpr std::array predictionNames{
    MAChoice{"t-k-2", MAConst::PREDICTION_T_K_MINUS_2},
    MAChoice{"t-k-1", MAConst::PREDICTION_T_K_MINUS_1},
    MAChoice{"normal", MAConst::PREDICTION_NORMAL},
};
static_assert(HasEachEnumerator<predictionNames>());

/// The distribution of the tests of a meta-regression.
inline constexpr std::array testNames{
    MAChoice{"t", MAConst::TEST_STUDENT_T},
    MAChoice{"normal", MAConst::TEST_STANDARD_NORMAL},
};
static_assert(HasEachEnumerator<testNames>());

inline constexpr std::array tableMeasureNames{
    MAChoice{"odds-ratio", MAConst::BIN_ODDS_RATIO},
    MAChoice{"peto", MAConst::BIN_PETO_ODDS_RATIO},
    MAChoice{"risk-ratio", MAConst::BIN_RISK_RATIO},
    MAChoice{"risk-difference", MAConst::BIN_RISK_DIFFERENCE},
};
static_assert(HasEachEnumerator<tableMeasureNames>());

inline constexpr std::array meansMeasureNames{
    MAChoice{"cohens-d", MAConst::CONT_COHENS_D},
    MAChoice{"mean-difference", MAConst::CONT_MEAN_DIFFERENCE},
    MAChoice{"hedges-g", MAConst::CONT_HEDGES_G},
    MAChoice{"glass-delta", MAConst::CONT_GLASS_DELTA},
};
static_assert(HasEachEnumerator<meansMeasureNames>());

inline constexpr std::array zeroCellNames{
    MAChoice{"each", MAConst::ZERO_ADJUST_EACH},
    MAChoice{"all-if-any", MAConst::ZERO_ADJUST_ALL_IF_ANY},
    MAChoice{"all", MAConst::ZERO_ADJUST_ALL},
    MAChoice{"none", MAConst::ZERO_ADJUST_NONE},
};
static_assert(HasEachEnumerator<zeroCellNames>());

inline constexpr std::array glassGroupNames{
    MAChoice{"control", MAConst::GROUP_CONTROL},
    MAChoice{"treatment", MAConst::GROUP_TREATMENT},
};
static_assert(HasEachEnumerator<glassGroupNames>());

inline constexpr std::array switchNames{
    MAChoice{"on", true},
    MAChoice{"off", false},
};

} // namespace MA_NAMESPACE
