#pragma once

#include <vector>

/// The copy that a getter returns. A getter has no status to report a failure with and must not throw:
/// when memory runs out it returns an empty vector.
template <class T>
std::vector<T> CopyOf(const std::vector<T>& values) noexcept
{
    try {
        return values;
    } catch (...) {
        return {};
    }
}
