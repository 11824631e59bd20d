#pragma once

#include "meta_analysis/platform/common/Export.h"

#include <vector>

/// One effect of a regression model: a factor, a covariate, or the interaction (product) of several factors
/// and covariates. Without variables it is the intercept.
///
/// An effect without factors has one column in the design matrix; one with factors has a column for each
/// cell, that is each combination of a level of every factor. Copying an effect may throw std::bad_alloc.
class META_ANALYSIS_EXPORT KXModelEffect
{
public:
    /// Adds a factor by its variable index. False, and nothing changed, for a negative index, a variable that
    /// the effect already has, or when memory runs out.
    bool AddFactor(int index) noexcept;

    /// Adds a covariate by its variable index, raised to the power `multiplicity`; for a covariate that the
    /// effect already has the powers add up. False, and nothing changed, for a negative index, a multiplicity
    /// below 1 or one that no int holds, a factor of the effect, or when memory runs out.
    bool AddCovariate(int index, int multiplicity = 1) noexcept;

    /// Variable indices of the factors, in the order added.
    const std::vector<int>& GetFactors() const noexcept { return factors_; }
    /// One entry per factor: its sorting level in the order of the cells, 0 for the factor that varies
    /// slowest.
    const std::vector<int>& GetFactorLevels() const noexcept { return factorLevels_; }
    int GetNFactors() const noexcept { return static_cast<int>(factors_.size()); }
    /// Variable indices of the covariates, in the order added, and the power of each.
    const std::vector<int>& GetCovariates() const noexcept { return covariates_; }
    const std::vector<int>& GetCovMultiplicities() const noexcept { return covMultiplicities_; }
    /// Variable indices of factors and covariates, each once, in the order added.
    const std::vector<int>& GetVariables() const noexcept { return variables_; }
    bool IsIntercept() const noexcept { return variables_.empty(); }

    /// Writes the effect to the debug display.
    void Display() const;

private:
    std::vector<int> factors_;
    std::vector<int> factorLevels_;
    std::vector<int> covariates_;
    std::vector<int> covMultiplicities_;
    std::vector<int> variables_;
};
