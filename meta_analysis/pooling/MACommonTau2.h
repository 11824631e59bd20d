#pragma once

#include "meta_analysis/inference/MAEffects.h"
#include "meta_analysis/pooling/MAPooledModel.h"
#include "meta_analysis/pooling/MAPoolingChoice.h"
#include "meta_analysis/pooling/MATau2Estimate.h"

#include <span>
#include <vector>

namespace MA_NAMESPACE {

/// The one between-study variance of groups of studies with a mean each, by the estimators of
/// `EstimateTau2` with the residuals about the groups' means: that of the meta-regression with the groups as
/// a factor. 0 where no group has two studies. Error: TAU2_FAILED. O(k) an iteration.
MATau2Estimate EstimateCommonTau2(std::span<const MAEffects> groups, const MATau2Choice& choice);

/// A model for each group, all parts of one model: with the same tau², its interval, likelihood and check,
/// and under the adjustment of Knapp and Hartung with one factor and k - G degrees of freedom, for k studies
/// in G groups. Heterogeneity is that of each group. After an error one model, which has it. None of the
/// groups is empty.
std::vector<MAPooledModel> PoolWithCommonTau2(std::span<const MAEffects> groups,
                                              const MARandomEffectsChoice& choice);

} // namespace MA_NAMESPACE
