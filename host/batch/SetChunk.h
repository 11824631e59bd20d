#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// Sets of studies with their keys, one behind the other. A study that is not in its set is NaN.
struct SetChunk
{
    std::string keys;
    std::vector<std::size_t> keyEnds; ///< in `keys`
    std::vector<double> effectSizes;
    std::vector<double> variances;
    std::vector<std::size_t> offsets = {0}; ///< of each set in the numbers, and their end

    std::size_t SetCount() const { return keyEnds.size(); }

    std::string_view Key(std::size_t set) const
    {
        const std::size_t start = set == 0 ? 0 : keyEnds[set - 1];
        return {keys.data() + start, keyEnds[set] - start};
    }

    void Begin(std::string_view key)
    {
        keys.append(key);
        keyEnds.push_back(keys.size());
        offsets.push_back(offsets.back());
    }

    /// Adds a study to the last set.
    void Add(double effectSize, double variance)
    {
        effectSizes.push_back(effectSize);
        variances.push_back(variance);
        ++offsets.back();
    }

    /// Whether it is worth a task.
    bool IsFull() const
    {
        constexpr std::size_t MANY_SETS = 4096;
        constexpr std::size_t MANY_STUDIES = 1 << 16;
        return SetCount() >= MANY_SETS || effectSizes.size() >= MANY_STUDIES;
    }

    /// Empties it, and keeps its memory.
    void Clear()
    {
        keys.clear();
        keyEnds.clear();
        effectSizes.clear();
        variances.clear();
        offsets.assign(1, 0);
    }
};

} // namespace host
