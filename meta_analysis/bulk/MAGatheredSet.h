#pragma once

#include "meta_analysis/bulk/MABulkSets.h"
#include "meta_analysis/effectsize/MAPoolable.h"
#include "meta_analysis/inference/MAEffects.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// The studies of one set that can be pooled, in memory that one set after another uses.
class MAGatheredSet
{
public:
    explicit MAGatheredSet(std::size_t largestCount) : effectSizes_(largestCount), variances_(largestCount) {}

    void Restart() { count_ = leftOut_ = 0; }
    /// Writes where the next study goes, and counts it only if it is one: that takes no branch.
    void Add(double effectSize, double variance)
    {
        const bool isPoolable = IsPoolable(effectSize, variance);
        effectSizes_[count_] = effectSize;
        variances_[count_] = variance;
        count_ += isPoolable ? 1 : 0;
        leftOut_ += isPoolable || std::isnan(effectSize) || std::isnan(variance) ? 0 : 1;
    }
    MAEffects Studies() const { return {{effectSizes_.data(), count_}, {variances_.data(), count_}}; }
    std::size_t Count() const { return count_; }
    std::size_t LeftOut() const { return leftOut_; }

private:
    std::vector<double> effectSizes_;
    std::vector<double> variances_;
    std::size_t count_ = 0;
    std::size_t leftOut_ = 0;
};

inline void Gather(const MARaggedSets& sets, std::size_t set, MAGatheredSet& gathered)
{
    gathered.Restart();
    for (std::size_t i = sets.offsets[set]; i < sets.offsets[set + 1]; ++i)
        gathered.Add(sets.effectSizes[i], sets.variances[i]);
}

inline void Gather(const MABlockSets& sets, std::size_t set, MAGatheredSet& gathered)
{
    gathered.Restart();
    for (std::size_t study = 0; study < sets.studyCount; ++study)
        gathered.Add(sets.effectSizes.At(study, set), sets.variances.At(study, set));
}

inline std::size_t StudyCount(const MARaggedSets& sets, std::size_t set)
{
    return sets.offsets[set + 1] - sets.offsets[set];
}

inline std::size_t StudyCount(const MABlockSets& sets, std::size_t)
{
    return sets.studyCount;
}

inline std::size_t LargestCount(const MARaggedSets& sets)
{
    std::size_t largest = 0;
    for (std::size_t set = 0; set < sets.setCount; ++set)
        largest = std::max(largest, StudyCount(sets, set));
    return largest;
}

inline std::size_t LargestCount(const MABlockSets& sets)
{
    return sets.setCount == 0 ? 0 : sets.studyCount;
}

inline bool AreUsable(const MARaggedSets& sets)
{
    if (sets.setCount == 0)
        return true;
    if (sets.offsets == nullptr || !std::is_sorted(sets.offsets, sets.offsets + sets.setCount + 1))
        return false;
    const bool isEmpty = sets.offsets[sets.setCount] == sets.offsets[0];
    return isEmpty || (sets.effectSizes != nullptr && sets.variances != nullptr);
}

inline bool AreUsable(const MABlockSets& sets)
{
    const bool isEmpty = sets.setCount == 0 || sets.studyCount == 0;
    return isEmpty || (sets.effectSizes.values != nullptr && sets.variances.values != nullptr);
}

} // namespace MA_NAMESPACE
