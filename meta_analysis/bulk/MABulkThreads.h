#pragma once

#include <cstddef>
#include <exception>
#include <thread>
#include <vector>

namespace MA_NAMESPACE {

/// The number of threads that a caller asks for; 0 or less is one for each processor.
inline std::size_t ThreadCountOf(int wanted)
{
    const unsigned int processors = std::thread::hardware_concurrency();
    return wanted > 0 ? static_cast<std::size_t>(wanted) : processors > 0 ? processors : 1;
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
