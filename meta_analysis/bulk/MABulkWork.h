#pragma once

#include "meta_analysis/bulk/MABulkThreads.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <optional>

namespace MA_NAMESPACE {

/// Does `worker(first, end)` for stretches of the sets 0 ... `setCount` - 1, on up to `threadCount` threads,
/// each with a worker that `Worker(call)` makes: its memory. Threads take chunks of `chunk` sets. A thread
/// for which there is no memory leaves its part to the others. Error OUT_OF_MEMORY when a worker throws;
/// throws std::bad_alloc when there is no worker at all.
template <class Worker, class Call>
KXStatus WorkOnSets(const Call& call, std::size_t setCount, std::size_t chunk, int threadCount)
{
    std::atomic<std::size_t> next = 0;
    std::atomic<bool> hasMemory = true;
    std::atomic<bool> isOwnTaken = false;
    Worker own(call);
    const auto workBy = [&](Worker& worker) {
        for (std::size_t first = next.fetch_add(chunk); first < setCount; first = next.fetch_add(chunk))
            worker(first, std::min(first + chunk, setCount));
    };
    const auto work = [&]() noexcept {
        std::optional<Worker> other;
        try {
            if (isOwnTaken.exchange(true))
                other.emplace(call);
        } catch (const std::exception&) {
            return;
        }
        try {
            workBy(other.has_value() ? *other : own);
        } catch (const std::exception&) {
            hasMemory = false;
        }
    };
    const std::size_t chunkCount = setCount / chunk + 1;
    RunOnThreads(ThreadCountOf(threadCount, chunkCount), work);
    return hasMemory ? KXStatus() : KXStatus(MAStatusCode::OUT_OF_MEMORY);
}

} // namespace MA_NAMESPACE
