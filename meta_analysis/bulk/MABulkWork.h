#pragma once

#include "meta_analysis/bulk/MABulkSets.h"
#include "meta_analysis/bulk/MABulkThreads.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <optional>

namespace MA_NAMESPACE {

/// Studies and sets that a thread takes at a time.
constexpr std::size_t chunkStudies = 8192;
constexpr std::size_t chunkSets = 1024;

/// The end of a chunk of at least one set: about `chunkStudies`, whatever the lengths of the sets.
inline std::size_t EndOfChunk(const MARaggedSets& sets, std::size_t first)
{
    const std::size_t* const begin = sets.offsets + first + 1;
    const std::size_t* const end = sets.offsets + std::min(first + chunkSets, sets.setCount);
    return static_cast<std::size_t>(std::lower_bound(begin, end, sets.offsets[first] + chunkStudies) -
                                    sets.offsets);
}

/// About as many threads have something to do.
inline std::size_t ChunkCount(const MARaggedSets& sets)
{
    const std::size_t studies = sets.setCount == 0 ? 0 : sets.offsets[sets.setCount] - sets.offsets[0];
    return std::min(std::max(studies / chunkStudies, sets.setCount / chunkSets) + 1, sets.setCount);
}

inline std::size_t EndOfChunk(const MABlockSets& sets, std::size_t first)
{
    const std::size_t count = chunkStudies / std::max<std::size_t>(sets.studyCount, 1);
    return std::min(first + std::clamp<std::size_t>(count, 1, chunkSets), sets.setCount);
}

inline std::size_t ChunkCount(const MABlockSets& sets)
{
    const std::size_t chunk = std::max<std::size_t>(EndOfChunk(sets, 0), 1);
    return (sets.setCount + chunk - 1) / chunk;
}

/// Does `worker(first, end)` for chunks of the sets of a call, `call.sets`, on up to `threadCount` threads,
/// each with a worker that `Worker(call)` makes: its memory. A thread for which there is no memory leaves its
/// part to the others. Error OUT_OF_MEMORY when a worker throws; throws std::bad_alloc when there is no
/// worker at all.
template <class Worker, class Call>
KXStatus WorkOnSets(const Call& call, int threadCount)
{
    std::atomic<std::size_t> next = 0; // the first set that no thread has taken
    std::atomic<bool> hasMemory = true;
    std::atomic<bool> isOwnTaken = false;
    Worker own(call);
    const auto workBy = [&](Worker& worker) {
        std::size_t first = next;
        while (first < call.sets.setCount) {
            const std::size_t end = EndOfChunk(call.sets, first);
            if (!next.compare_exchange_weak(first, end))
                continue;
            worker(first, end);
            first = next;
        }
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
    RunOnThreads(ThreadCountOf(threadCount, ChunkCount(call.sets)), work);
    return hasMemory ? KXStatus() : KXStatus(MAStatusCode::OUT_OF_MEMORY);
}

} // namespace MA_NAMESPACE
