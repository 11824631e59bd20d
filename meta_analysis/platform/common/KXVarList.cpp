#include "meta_analysis/platform/common/KXVarList.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <utility>

int KXVarList::Size() const noexcept
{
    return static_cast<int>(variables_.size());
}

const KXVar& KXVarList::GetVarAt(int position) const noexcept
{
    static const KXVar noVariable;
    const auto index = static_cast<std::size_t>(position);
    return index < variables_.size() ? variables_[index] : noVariable;
}

int KXVarList::FindVariable(const std::string& name) const noexcept
{
    const auto found = std::find_if(variables_.begin(), variables_.end(),
                                    [&](const KXVar& variable) { return variable.name == name; });
    return found == variables_.end() ? -1 : static_cast<int>(found - variables_.begin());
}

int KXVarList::AddContVar(std::string name, std::string label) noexcept
{
    return Add({std::move(name), std::move(label), KXVar::CONTINUOUS});
}

int KXVarList::AddCatVar(std::string name, std::string label) noexcept
{
    return Add({std::move(name), std::move(label), KXVar::CATEGORICAL});
}

int KXVarList::Add(KXVar&& variable) noexcept
{
    try {
        variables_.push_back(std::move(variable));
        return Size() - 1;
    } catch (const std::exception&) {
        return -1;
    }
}
