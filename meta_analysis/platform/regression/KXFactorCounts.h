#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/Record.h"

#include <map>
#include <vector>

/// Counts the records at each level of each factor, weighted by a frequency variable where there is one.
///
/// Memory grows with the levels that occur, not with the sizes of the factors. Constructor and `Update` throw
/// std::bad_alloc when memory runs out.
class META_ANALYSIS_EXPORT KXFactorCounts
{
public:
    /// Counts over no factor.
    KXFactorCounts() noexcept = default;
    /// `factors` are variable indices, `sizes` their numbers of levels (0 for a factor without entry),
    /// `frequencyVariable` and `dependentVariable` variable indices, -1 for none.
    KXFactorCounts(std::vector<int> factors, std::vector<int> sizes, int frequencyVariable,
                   int dependentVariable);

    /// Counts a record at its level of each factor, but not for a factor whose value is missing or out of
    /// range. A record without dependent value, or whose frequency is not a positive number, counts nowhere.
    void Update(const Record& record);

    /// Variable indices and sizes as constructed, one entry per factor each.
    const std::vector<int>& GetFactors() const noexcept { return factors_; }
    const std::vector<int>& GetFactorSizes() const noexcept { return sizes_; }

    /// Count at a level of the factor at a position of `GetFactors`; 0 when there is no such level or factor.
    double GetCount(int factorPosition, int level) const noexcept;

private:
    double Frequency(const Record& record) const noexcept;

    std::vector<int> factors_;
    std::vector<int> sizes_;
    int frequencyVariable_ = -1;
    int dependentVariable_ = -1;
    std::vector<std::map<int, double>> counts_; ///< by factor position: count by level
};
