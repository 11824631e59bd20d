#pragma once

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <cstddef>
#include <new>
#include <utility>

namespace MA_NAMESPACE {

/// The library's boundary for exceptions: runs `operation`, turns what it throws into an error, and stores
/// that error as the object's status.
///
/// The library's own code throws only when memory runs out. Any other exception comes from an object of
/// the host (an iterator, a listener, a display sink) and is reported as a failure of its data.
template <class Operation>
KXStatus Guarded(KXStatus& stored, Operation&& operation) noexcept
{
    try {
        return std::forward<Operation>(operation)();
    } catch (const std::bad_alloc&) {
        stored = KXStatus(MAStatusCode::OUT_OF_MEMORY);
    } catch (...) {
        stored = KXStatus(MAStatusCode::ITERATOR_FAILED);
    }
    return stored;
}

/// For operations that report by their return value that memory ran out, called within a guarded one, and
/// whose other failures are not its own.
inline void RequireMemory(bool sufficed)
{
    if (!sufficed)
        throw std::bad_alloc();
}
inline void RequireMemory(const KXStatus& status)
{
    RequireMemory(status.GetCode() != MAStatusCode::OUT_OF_MEMORY);
}

/// For copies taken through getters within a guarded operation: a getter that runs out of memory returns an
/// empty vector, which must not pass for a result.
template <class... Vectors>
void RequireLength(std::size_t length, const Vectors&... copies)
{
    RequireMemory(((copies.size() == length) && ...));
}

} // namespace MA_NAMESPACE
