#pragma once

#include "meta_analysis/platform/common/KXStatus.h"

#include <algorithm>
#include <vector>

namespace MA_NAMESPACE {

/// Appends `status` to `list` when it is a warning that the list does not hold yet; true if appended.
inline bool AppendNewWarning(const KXStatus& status, std::vector<KXStatus>& list)
{
    if (!status.IsWarning() || std::find(list.begin(), list.end(), status) != list.end())
        return false;
    list.push_back(status);
    return true;
}

} // namespace MA_NAMESPACE
