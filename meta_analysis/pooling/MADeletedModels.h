#pragma once

#include "meta_analysis/inference/MAEffects.h"
#include "meta_analysis/pooling/MADeletionCurve.h"
#include "meta_analysis/pooling/MAPooledModel.h"
#include "meta_analysis/pooling/MAPoolingChoice.h"
#include "meta_analysis/pooling/MATau2Estimate.h"
#include "meta_analysis/pooling/MAUnweightedSums.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace MA_NAMESPACE {

/// The random-effects models of all studies but one, where tau² follows from sums that all deletions share:
/// by the global search (ML, REML, EB), or by a closed form (HE, HS, DL, SJ). Scoring is none of these:
/// started elsewhere, or on other sums, it could end elsewhere.
///
/// A deletion costs O(1). Its search starts from the tau² of all studies, and proves its own. A model equals
/// that of a plain refit but for rounding. It has no prediction, no interval of tau² and no likelihood.
class MADeletedModels
{
public:
    MADeletedModels(const MAEffects& studies, const MARandomEffectsChoice& choice);

    /// The model without study i; none where the shared sums lose digits (one study dominates the others, or
    /// the data have no likelihood) or fewer than two studies are left. Those need a plain refit.
    std::optional<MAPooledModel> Without(std::size_t i);

private:
    std::vector<double> Prepare(const MAEffects& studies);
    MATau2Estimate Tau2Without(std::size_t i, const MADeletionFit& fixed);
    double SidikJonkmanTau2(const MAUnweightedSums& others);

    MARandomEffectsChoice choice_;
    std::size_t count_;
    double tau2_; ///< of all studies
    double mean_;
    std::vector<MAUnweightedSums> others_; ///< without each study, for HE and SJ
    std::optional<MADeletionCurve> curve_;
};

/// Whether the tau² of the model is one of those.
bool FollowsFromSharedSums(const MARandomEffectsChoice& choice);

} // namespace MA_NAMESPACE
