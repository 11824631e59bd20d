#include "meta_analysis/pooling/MADeletedFixedModels.h"

#include "meta_analysis/inference/MAWeightedMean.h"
#include "meta_analysis/platform/common/SumsWithoutEach.h"
#include "meta_analysis/pooling/MAPooling.h"

namespace MA_NAMESPACE {

MADeletedFixedModels::MADeletedFixedModels(const MAEffects& studies)
    : origin_(WeightedMean(studies, 0.0).Mean()),
      others_(SumsWithoutEach(studies.Count(), MACentredSums(), [&](std::size_t i, MACentredSums& sums) {
          sums.Add(1.0 / studies.variances[i], studies.effectSizes[i] - origin_);
      }))
{}

std::optional<MAPooledModel> MADeletedFixedModels::Without(std::size_t i,
                                                           const MAFixedEffectChoice& choice) const
{
    const MACentredSums& sums = others_[i];
    if (!sums.AreExact())
        return std::nullopt;
    MAQuantiles quantiles(choice.alpha);
    return FixedEffectModel({others_.size() - 1, origin_ + sums.mean, sums.weightSum, sums.squares}, choice,
                            MAWantedResults(), quantiles);
}

} // namespace MA_NAMESPACE
