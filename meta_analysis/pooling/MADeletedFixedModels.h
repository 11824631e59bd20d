#pragma once

#include "meta_analysis/inference/MACentredSums.h"
#include "meta_analysis/inference/MAEffects.h"
#include "meta_analysis/pooling/MAPooledModel.h"
#include "meta_analysis/pooling/MAPoolingChoice.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace MA_NAMESPACE {

/// The fixed-effect models of all studies but one, in O(1) each. They equal those of plain refits but for
/// rounding.
class MADeletedFixedModels
{
public:
    explicit MADeletedFixedModels(const MAEffects& studies);

    /// The model without study i; none where its sums lose digits, as where it decides the mean of all.
    std::optional<MAPooledModel> Without(std::size_t i, const MAFixedEffectChoice& choice) const;

private:
    double origin_; ///< the mean of all, from which effects are counted
    std::vector<MACentredSums> others_;
};

} // namespace MA_NAMESPACE
