#pragma once

#include "meta_analysis/inference/MAQuantiles.h"
#include "meta_analysis/pooling/MAPooledModel.h"
#include "meta_analysis/pooling/MAPoolingChoice.h"
#include "meta_analysis/pooling/MAPrefixCurve.h"
#include "meta_analysis/pooling/MATau2Estimate.h"
#include "meta_analysis/pooling/MAWantedResults.h"

#include <cstddef>
#include <optional>

namespace MA_NAMESPACE {

/// The random-effects models of the first 1, 2, ... studies, by every estimator.
///
/// A model costs O(1) where tau² is near that of models before it, so that all take a time that grows hardly
/// faster than the number of studies. It equals that of a plain fit but for rounding: of sums that cancel, at
/// least a 32nd is left. It is the mean with its test, without heterogeneity and prediction. A search starts
/// from the tau² of the model before, and proves its own.
class MAPrefixModels
{
public:
    /// Refers to the studies, whose variances are positive and finite.
    MAPrefixModels(const MAEffects& studies, const MARandomEffectsChoice& choice);

    /// The model with one more study; none of few studies, where the sums lose digits, and where scoring
    /// reaches its limit, which need a plain fit.
    std::optional<MAPooledModel> Next();

private:
    void AddUnweighted(std::size_t study);
    MATau2Estimate Tau2();
    MATau2Estimate IteratedTau2();
    double HedgesTau2() const;
    double SidikJonkmanTau2();

    MAPrefixCurve curve_;
    MARandomEffectsChoice choice_;
    MAWantedResults wanted_;
    MAQuantiles quantiles_;
    double last_ = 0.0; ///< tau²

    // In the unit of the curve, each study with the same weight.
    double mean_ = 0.0;
    double residualSum_ = 0.0;
    double varianceSum_ = 0.0;
};

} // namespace MA_NAMESPACE
