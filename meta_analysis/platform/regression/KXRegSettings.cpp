#include "meta_analysis/platform/regression/KXRegSettings.h"

#include <algorithm>
#include <cstddef>
#include <exception>

namespace {

/// Position of a value in a list, -1 when it is not there.
int PositionOf(int value, const std::vector<int>& values)
{
    const auto found = std::find(values.begin(), values.end(), value);
    return found == values.end() ? -1 : static_cast<int>(found - values.begin());
}

int MaxOf(const std::vector<int>& values)
{
    return values.empty() ? -1 : *std::max_element(values.begin(), values.end());
}

} // namespace

KXRegSettings::KXRegSettings() noexcept = default;
KXRegSettings::~KXRegSettings() = default;

bool KXRegSettings::SetDependent(int index)
{
    if (index < 0 || (GetVariableRoles(index) & (ROLE_FACTOR | ROLE_COVARIATE)) != 0)
        return false;
    dependent_ = index;
    return true;
}

int KXRegSettings::AddCovariate(int index)
{
    if (index < 0 || (GetVariableRoles(index) & (ROLE_DEPENDENT | ROLE_FACTOR)) != 0)
        return -1;
    const int present = PositionOf(index, covariates_);
    if (present >= 0)
        return present;
    try {
        covariates_.push_back(index);
    } catch (const std::exception&) {
        return -1;
    }
    return static_cast<int>(covariates_.size()) - 1;
}

bool KXRegSettings::AddModelEffect(const KXModelEffect& effect)
{
    try {
        modelEffects_.push_back(effect);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

int KXRegSettings::AddFactor(int index, int size) noexcept
{
    if (index < 0 || size < 1 || (GetVariableRoles(index) & (ROLE_DEPENDENT | ROLE_COVARIATE)) != 0)
        return -1;
    const int present = PositionOf(index, factors_);
    if (present >= 0)
        return GetFactorSize(index) == size ? present : -1;
    try {
        factorSizes_.reserve(factorSizes_.size() + 1); // so that the second append cannot fail
        factors_.push_back(index);
    } catch (const std::exception&) {
        return -1;
    }
    factorSizes_.push_back(size);
    return static_cast<int>(factors_.size()) - 1;
}

int KXRegSettings::GetFactorSize(int index) const noexcept
{
    const int position = PositionOf(index, factors_);
    return position < 0 ? 0 : factorSizes_[static_cast<std::size_t>(position)];
}

int KXRegSettings::GetVariableRoles(int index) const noexcept
{
    if (index < 0)
        return 0;
    return (index == dependent_ ? ROLE_DEPENDENT : 0) | (PositionOf(index, factors_) >= 0 ? ROLE_FACTOR : 0) |
           (PositionOf(index, covariates_) >= 0 ? ROLE_COVARIATE : 0) |
           (index == freqWeightVar_ || index == regrWeightVar_ ? ROLE_WEIGHT : 0);
}

int KXRegSettings::GetMaxVariableIndex() const noexcept
{
    return std::max({-1, dependent_, freqWeightVar_, regrWeightVar_, MaxOf(factors_), MaxOf(covariates_)});
}
