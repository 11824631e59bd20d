#pragma once

#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/settings/MAConst.h"

namespace MA_NAMESPACE {

/// When scoring stops. With a limit of iterations below 1 the estimate is that of Hedges, where it starts.
struct MAIterationLimits
{
    int maxIter = 100;
    int maxStepHalving = 5;
    double tolerance = 1e-6; ///< of a step of tau², in the square of the effects' unit
};

/// An estimator of the between-study variance, and how an iterative one is found.
struct MATau2Choice
{
    MAConst::TAU2ESTIMATOR estimator = MAConst::TAU2_REML;
    MAIterationLimits limits;
    MAConst::TAU2SEARCH search = MAConst::TAU2_SEARCH_SCORING;
};

struct MAFixedEffectChoice
{
    double nullHypothesis = 0.0; ///< of the z test, on the effects' scale
    double alpha = 0.05;         ///< 1 - confidence level
};

struct MARandomEffectsChoice
{
    MAConst::TAU2ESTIMATOR estimator = MAConst::TAU2_REML;
    MAConst::KNAPPHADJTYPE knappHartung = MAConst::KNAPP_HARTUNG_NONE;
    MAIterationLimits limits;
    MAConst::TAU2SEARCH search = MAConst::TAU2_SEARCH_SCORING;
    MAConst::TAU2INTERVAL tau2Interval = MAConst::TAU2_INTERVAL_NONE;
    MAConst::PREDICTIONTYPE prediction = MAConst::PREDICTION_T_K_MINUS_2;
    double threshold = KXMV::Missing(); ///< of the probability of a new study's effect, on the effects' scale
    bool isThresholdAbove = true;
    /// Whether an iterative tau² is compared with the one that the global search proves, for
    /// `MATau2Results::isDoubtful`; costs a search.
    bool checksTau2 = false;
    double alpha = 0.05; ///< 1 - confidence level
};

} // namespace MA_NAMESPACE
