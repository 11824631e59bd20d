#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXMV.h"

#include <cstddef>
#include <utility>
#include <vector>

/// One row of the host's data: a value for each variable, by the variable's position. Copying one may throw
/// std::bad_alloc.
class META_ANALYSIS_EXPORT Record
{
public:
    Record() = default;
    explicit Record(std::vector<double> values) : values_(std::move(values)) {}

    std::size_t Size() const noexcept { return values_.size(); }

    /// Value of the variable at `index`; missing when the record has none (an index of -1 included).
    double Get(int index) const noexcept
    {
        // A negative index turns into one far beyond any record.
        const auto position = static_cast<std::size_t>(index);
        return position < values_.size() ? values_[position] : KXMV::Missing();
    }

    /// Stores a value; an index outside the record is ignored.
    void Set(int index, double value) noexcept;

    /// Makes room for `size` values, new ones missing. False, and nothing changed, when memory runs out.
    bool Resize(std::size_t size) noexcept;

private:
    std::vector<double> values_;
};
