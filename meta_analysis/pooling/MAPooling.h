#pragma once

#include "meta_analysis/pooling/MAPooledModel.h"
#include "meta_analysis/settings/MAConst.h"

#include <span>

namespace MA_NAMESPACE {

/// Effect sizes and within-study variances, an entry a study in each.
struct MAEffects
{
    std::span<const double> effectSizes;
    std::span<const double> variances;
};

/// When an iterative estimator stops.
struct MAIterationLimits
{
    int maxIter = 100;
    int maxStepHalving = 5;
    double tolerance = 1e-6;
};

struct MAFixedEffectChoice
{
    double nullHypothesis = 0.0;
    double alpha = 0.05;
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
    double alpha = 0.05;
};

/// Pools by inverse variance, w = 1 / v. Errors: INPUT_NOT_GIVEN, LENGTH_MISMATCH.
MAPooledModel PoolFixedEffect(const MAEffects& studies, const MAFixedEffectChoice& choice);

/// Pools with w = 1 / (v + tau²). Errors as `PoolFixedEffect`, and TAU2_FAILED for an unknown estimator.
MAPooledModel PoolRandomEffects(const MAEffects& studies, const MARandomEffectsChoice& choice);

/// Whether tau² of an iterative estimator is off the one that the global search proves by more than a
/// hundredth of the latter plus the typical within-study variance, or the search proves none. Takes one
/// search, and none after a global one that ended with a proof.
bool IsTau2Doubtful(const MAEffects& studies, const MARandomEffectsChoice& choice,
                    const MAPooledModel& model);

} // namespace MA_NAMESPACE
