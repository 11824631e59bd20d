#include "meta_analysis/platform/regression/KXModelEffect.h"

#include "meta_analysis/platform/common/KXDisplay_940.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <limits>
#include <utility>

namespace {

bool Contains(const std::vector<int>& values, int value)
{
    return std::find(values.begin(), values.end(), value) != values.end();
}

/// Adds to a power, unless no int holds the sum.
bool RaisePower(int& power, int added) noexcept
{
    if (added > std::numeric_limits<int>::max() - power)
        return false;
    power += added;
    return true;
}

/// Makes a change as a whole, or not at all when memory runs out.
template <class Change>
bool AllOrNothing(KXModelEffect& effect, Change change) noexcept
{
    try {
        KXModelEffect changed = effect;
        change(changed);
        effect = std::move(changed);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace

bool KXModelEffect::AddFactor(int index) noexcept
{
    if (index < 0 || Contains(variables_, index))
        return false;
    return AllOrNothing(*this, [&](KXModelEffect& effect) {
        effect.factorLevels_.push_back(GetNFactors());
        effect.factors_.push_back(index);
        effect.variables_.push_back(index);
    });
}

bool KXModelEffect::AddCovariate(int index, int multiplicity) noexcept
{
    if (index < 0 || multiplicity < 1 || Contains(factors_, index))
        return false;
    const auto found = std::find(covariates_.begin(), covariates_.end(), index);
    if (found != covariates_.end()) {
        int& power = covMultiplicities_[static_cast<std::size_t>(found - covariates_.begin())];
        return RaisePower(power, multiplicity);
    }
    return AllOrNothing(*this, [&](KXModelEffect& effect) {
        effect.covariates_.push_back(index);
        effect.covMultiplicities_.push_back(multiplicity);
        effect.variables_.push_back(index);
    });
}

void KXModelEffect::Display() const
{
    KXDisplay_940::DisplayText("KXModelEffect display start");
    KXDisplay_940::DisplayIV("Factors", factors_);
    KXDisplay_940::DisplayIV("Covariates", covariates_);
    KXDisplay_940::DisplayIV("Multiplicities", covMultiplicities_);
    KXDisplay_940::DisplayText("KXModelEffect display end");
}
