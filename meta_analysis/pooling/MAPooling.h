#pragma once

#include "meta_analysis/inference/MAEffects.h"
#include "meta_analysis/inference/MAQuantiles.h"
#include "meta_analysis/pooling/MAPooledModel.h"
#include "meta_analysis/pooling/MAPoolingChoice.h"
#include "meta_analysis/pooling/MATau2Estimate.h"
#include "meta_analysis/pooling/MAWantedResults.h"

#include <cstddef>
#include <span>

namespace MA_NAMESPACE {

/// Pools by inverse variance, w = 1 / v. Error: LENGTH_MISMATCH.
MAPooledModel PoolFixedEffect(const MAEffects& studies, const MAFixedEffectChoice& choice);

/// Pools with w = 1 / (v + tau²). Errors as `PoolFixedEffect`, and TAU2_FAILED for an unknown estimator.
/// Allocates nothing, but for an interval of tau² by profile likelihood.
MAPooledModel PoolRandomEffects(const MAEffects& studies, const MARandomEffectsChoice& choice);

/// The same of what is wanted; the quantiles are of the choice's alpha.
MAPooledModel PoolFixedEffect(const MAEffects& studies, const MAFixedEffectChoice& choice,
                              const MAWantedResults& wanted, MAQuantiles& quantiles);
MAPooledModel PoolRandomEffects(const MAEffects& studies, const MARandomEffectsChoice& choice,
                                const MAWantedResults& wanted, MAQuantiles& quantiles);

/// How the means of groups of studies are tested that share tau². The groups are those of one model, which
/// has a mean for each; one group is a model without groups.
struct MAMeanTest
{
    double residualDf = 0.0; ///< k - the number of means
    bool isAdjusted = false; ///< after Knapp and Hartung, by Student's t; else by the normal distribution
    double factor = 1.0;     ///< of the variance, from the residuals of all groups; 1 without residual df
};
MAMeanTest TestOfMeans(std::span<const MAEffects> groups, MAConst::KNAPPHADJTYPE adjustment, double tau2);

/// The model of one of these groups at tau², without what goes with the estimate of tau².
MAPooledModel PoolAtTau2(const MAEffects& studies, const MARandomEffectsChoice& choice, double tau2,
                         const MAMeanTest& test);

/// Sets the bounds of H² and I² to their values at those of tau², where these are there, and the model has a
/// typical within-study variance.
void BoundHeterogeneity(MAPooledModel& model);

/// Sums over studies, of which their fixed-effect model is made.
struct MAFixedEffectSums
{
    std::size_t count;
    double mean;
    double weightSum;
    double q; ///< Cochran's, where a wanted result takes it
};
MAPooledModel FixedEffectModel(const MAFixedEffectSums& sums, const MAFixedEffectChoice& choice,
                               const MAWantedResults& wanted, MAQuantiles& quantiles);

/// Sums over two studies or more, of which their random-effects model is made.
struct MARandomEffectsSums
{
    std::size_t count;
    MATau2Estimate tau2;
    double mean;
    double weightSum;   ///< at tau²
    double residualSum; ///< sum(w (y - mean)²) at tau²
    double q;           ///< Cochran's
    double fixedTrace;  ///< sum(w) - sum(w²) / sum(w) with w = 1 / v
};

/// The model of the sums, without what `MATau2Results` has of the likelihood; the short form also without a
/// prediction.
MAPooledModel RandomEffectsModel(const MARandomEffectsSums& sums, const MARandomEffectsChoice& choice);
MAPooledModel RandomEffectsModel(const MARandomEffectsSums& sums, const MARandomEffectsChoice& choice,
                                 const MAWantedResults& wanted, MAQuantiles& quantiles);

/// The check of `MARandomEffectsChoice::checksTau2`, for a model that was pooled without it.
bool IsTau2Doubtful(const MAEffects& studies, const MARandomEffectsChoice& choice,
                    const MAPooledModel& model);

} // namespace MA_NAMESPACE
