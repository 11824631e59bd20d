#pragma once

#include <algorithm>
#include <cstddef>
#include <exception>
#include <thread>
#include <vector>

namespace MA_NAMESPACE {

/// The number of threads that a caller asks for, 0 or less being one for each processor, and not more than
/// have work. The processors are counted only when they matter: it takes longer than to pool a set.
inline std::size_t ThreadCountOf(int wanted, std::size_t most)
{
    if (most <= 1)
        return 1;
    if (wanted > 0)
        return std::min(static_cast<std::size_t>(wanted), most);
    return std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, most);
}

/// Runs `work`, which must not throw, on this thread and on up to `count` - 1 others, and waits for all.
/// Where no further thread can be made it goes on with those that there are.
template <class Work>
void RunOnThreads(std::size_t count, const Work& work)
{
    std::vector<std::thread> others;
    try {
        others.reserve(count - 1);
        while (others.size() + 1 < count)
            others.emplace_back([&work] { work(); });
    } catch (const std::exception&) {
        // Fewer threads share the same work.
    }
    work();
    for (std::thread& other : others)
        other.join();
}

} // namespace MA_NAMESPACE
