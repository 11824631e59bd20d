#include "meta_analysis/platform/regression/KXFactorCounts.h"

#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/regression/FactorLevel.h"

#include <cstddef>
#include <utility>

KXFactorCounts::KXFactorCounts(std::vector<int> factors, std::vector<int> sizes, int frequencyVariable,
                               int dependentVariable)
    : factors_(std::move(factors)),
      sizes_(std::move(sizes)),
      frequencyVariable_(frequencyVariable),
      dependentVariable_(dependentVariable),
      counts_(factors_.size())
{
    sizes_.resize(factors_.size());
}

void KXFactorCounts::Update(const Record& record)
{
    if (factors_.empty())
        return;
    if (dependentVariable_ >= 0 && KXMV::IsMissing(record.Get(dependentVariable_)))
        return;
    const double frequency = Frequency(record);
    if (!(frequency > 0.0))
        return;
    for (std::size_t position = 0; position < factors_.size(); ++position) {
        const int level = FactorLevel(record.Get(factors_[position]));
        if (level >= 0 && level < sizes_[position])
            counts_[position][level] += frequency;
    }
}

double KXFactorCounts::GetCount(int factorPosition, int level) const noexcept
{
    const auto position = static_cast<std::size_t>(factorPosition); // a negative one lies far beyond the end
    if (position >= counts_.size())
        return 0.0;
    const auto found = counts_[position].find(level);
    return found == counts_[position].end() ? 0.0 : found->second;
}

/// Missing, which is negative, when the record has no frequency.
double KXFactorCounts::Frequency(const Record& record) const noexcept
{
    return frequencyVariable_ < 0 ? 1.0 : record.Get(frequencyVariable_);
}
