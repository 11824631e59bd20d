#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/Record.h"
#include "meta_analysis/regression/design/DataStat.h"

#include <vector>

namespace MA_NAMESPACE {

/// Statistics of the variables of a meta-regression over its usable records, weighted by the frequency
/// weight variable where there is one.
class META_ANALYSIS_EXPORT MADataStats
{
public:
    /// Variable indices, -1 for a variable that is not used.
    MADataStats(const std::vector<int>& covariates, int offset, int omegaWeight, int frequencyWeight,
                int dependent);

    /// Adds a record, unless its frequency weight is missing.
    void Update(const Record& record);

    /// One entry per covariate, in the order of the settings.
    const std::vector<DataStat>& GetCovariateStats() const { return covariates_; }
    /// Statistics of the covariate at position `n`, or with the given variable index; those of an unused
    /// variable when there is no such covariate.
    const DataStat& GetStatOfNthCov(int n) const;
    const DataStat& GetCovariateStat(int variableIndex) const;
    const DataStat& GetOffsetStat() const { return offset_; }
    const DataStat& GetWeightStat() const { return omegaWeight_; }
    const DataStat& GetDependentStat() const { return dependent_; }
    /// Statistics of the dependent variable weighted by frequency weight times omega weight.
    const DataStat& GetDependentW2Stat() const { return dependentTwoWeights_; }
    double GetWeightedDependentSum() const { return weightedDependentSum_; }

    void Display() const;

private:
    std::vector<DataStat> covariates_;
    DataStat offset_;
    DataStat omegaWeight_;
    DataStat dependent_;
    DataStat dependentTwoWeights_;
    int frequencyWeightIndex_;
    double weightedDependentSum_ = 0.0;
};

} // namespace MA_NAMESPACE
