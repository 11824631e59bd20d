#pragma once

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// Some of an analysis' studies, by their positions among its studies, in the order in which they are used.
using MASelection = std::vector<std::size_t>;

/// The entries of a study column that a selection names.
template <class T>
std::vector<T> Selected(const std::vector<T>& column, const MASelection& selection)
{
    std::vector<T> values;
    values.reserve(selection.size());
    for (const std::size_t study : selection)
        values.push_back(column[study]);
    return values;
}

} // namespace MA_NAMESPACE
