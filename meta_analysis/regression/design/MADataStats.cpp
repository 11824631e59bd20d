#include "meta_analysis/regression/design/MADataStats.h"

#include "meta_analysis/platform/common/KXDisplay_940.h"
#include "meta_analysis/platform/common/KXMV.h"

#include <cstddef>

namespace MA_NAMESPACE {

namespace {

const DataStat unusedVariable;

} // namespace

MADataStats::MADataStats(const std::vector<int>& covariates, int offset, int omegaWeight, int frequencyWeight,
                         int dependent)
    : covariates_(covariates.begin(), covariates.end()),
      offset_(offset),
      omegaWeight_(omegaWeight),
      dependent_(dependent),
      dependentTwoWeights_(dependent),
      frequencyWeightIndex_(frequencyWeight)
{}

void MADataStats::Update(const Record& record)
{
    const double weight = frequencyWeightIndex_ < 0 ? 1.0 : record.Get(frequencyWeightIndex_);
    if (KXMV::IsMissing(weight))
        return;
    for (DataStat& covariate : covariates_)
        covariate.Update(record.Get(covariate.GetVariableIndex()), weight);
    const double omegaWeight = record.Get(omegaWeight_.GetVariableIndex());
    const double dependent = record.Get(dependent_.GetVariableIndex());
    offset_.Update(record.Get(offset_.GetVariableIndex()), weight);
    omegaWeight_.Update(omegaWeight, weight);
    dependent_.Update(dependent, weight);
    if (!KXMV::IsMissing(omegaWeight))
        dependentTwoWeights_.Update(dependent, weight * omegaWeight);
    if (!KXMV::IsMissing(dependent))
        weightedDependentSum_ += dependent * weight;
}

const DataStat& MADataStats::GetStatOfNthCov(int n) const
{
    const auto position = static_cast<std::size_t>(n);
    return n >= 0 && position < covariates_.size() ? covariates_[position] : unusedVariable;
}

const DataStat& MADataStats::GetCovariateStat(int variableIndex) const
{
    for (const DataStat& covariate : covariates_) {
        if (covariate.GetVariableIndex() == variableIndex)
            return covariate;
    }
    return unusedVariable;
}

void MADataStats::Display() const
{
    KXDisplay_940::DisplayText("MADataStats display start");
    KXDisplay_940::DisplayI("Number of covariate variables", static_cast<int>(covariates_.size()));
    for (const DataStat& covariate : covariates_) {
        KXDisplay_940::DisplayText("Covariate data statistics");
        covariate.Display();
    }
    KXDisplay_940::DisplayText("Offset data statistics");
    offset_.Display();
    KXDisplay_940::DisplayText("Omega (scale) weight data statistics");
    omegaWeight_.Display();
    KXDisplay_940::DisplayI("Index of the frequency weight variable", frequencyWeightIndex_);
    KXDisplay_940::DisplayText("Dependent data statistics");
    dependent_.Display();
    KXDisplay_940::DisplayText("Dependent data statistics computed with 2 weights");
    dependentTwoWeights_.Display();
    KXDisplay_940::DisplayText("MADataStats display end");
}

} // namespace MA_NAMESPACE
