#pragma once

#include "meta_analysis/platform/common/Export.h"

#include <algorithm>
#include <cstddef>
#include <vector>

/// A set of positions 0 ... Size() - 1, such as the non-redundant columns of a regression.
///
/// A position outside the set's size is never in it, and setting or clearing it is ignored.
class META_ANALYSIS_EXPORT KXBitSet
{
public:
    /// Throws std::bad_alloc when memory runs out, as does Resize.
    explicit KXBitSet(std::size_t size = 0) : bits_(size) {}

    /// Cuts positions off at the end or adds clear ones there.
    void Resize(std::size_t size) { bits_.resize(size); }

    std::size_t Size() const noexcept { return bits_.size(); }

    bool Test(std::size_t position) const noexcept { return position < Size() && bits_[position]; }
    void Set(std::size_t position) noexcept { Assign(position, true); }
    void Clear(std::size_t position) noexcept { Assign(position, false); }

    /// The number of set positions.
    std::size_t Count() const noexcept
    {
        return static_cast<std::size_t>(std::count(bits_.begin(), bits_.end(), true));
    }

    friend bool operator==(const KXBitSet& left, const KXBitSet& right) noexcept
    {
        return left.bits_ == right.bits_;
    }
    friend bool operator!=(const KXBitSet& left, const KXBitSet& right) noexcept { return !(left == right); }

private:
    void Assign(std::size_t position, bool value) noexcept
    {
        if (position < Size())
            bits_[position] = value;
    }

    std::vector<bool> bits_;
};
