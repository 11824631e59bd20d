#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/regression/KXModelEffect.h"

#include <utility>
#include <vector>

/// What one parameter (one column of the design matrix) of a regression model stands for: the intercept, or
/// a cell of an effect.
///
/// A host names the parameter from it: for each factor its name with the level of the same position in
/// `GetCategories`, for each covariate its name, as often as its multiplicity says.
class META_ANALYSIS_EXPORT KXRegrParameter
{
public:
    /// The intercept.
    KXRegrParameter() = default;

    /// A parameter of the effect at position `effect` (from 0) of the model's effects, of the dependent
    /// variable's category `depCategory` (0 for a continuous one), without categories of its own yet. Throws
    /// std::bad_alloc, and changes nothing, when memory runs out.
    void SetupFromEffect(const KXModelEffect& modelEffect, int effect, int depCategory);

    /// The cell: one level per factor of the effect, in the order of its factors.
    void SetCategories(std::vector<int> levels) noexcept { categories_ = std::move(levels); }
    const std::vector<int>& GetCategories() const noexcept { return categories_; }

    /// Position of the effect in the model, -1 for the intercept.
    int GetEffectNumber() const noexcept { return effectNumber_; }
    int GetDependentCategory() const noexcept { return dependentCategory_; }
    bool IsIntercept() const noexcept { return effect_.IsIntercept(); }

    /// Variables of the effect, as in `KXModelEffect`.
    const std::vector<int>& GetFactors() const noexcept { return effect_.GetFactors(); }
    const std::vector<int>& GetCovariates() const noexcept { return effect_.GetCovariates(); }
    const std::vector<int>& GetCovMultiplicities() const noexcept { return effect_.GetCovMultiplicities(); }

private:
    KXModelEffect effect_;
    int effectNumber_ = -1;
    int dependentCategory_ = 0;
    std::vector<int> categories_;
};
