#pragma once

#include <cstddef>
#include <vector>

namespace host {

/// How many records were read, used and left out, and why.
struct RecordSummary
{
    std::size_t read = 0;
    std::vector<int> used; ///< their numbers, from 0
    int missing = 0;
    int invalid = 0;
    int dropped = 0;
    /// The records that are no studies, from 0, with their reasons (MAConst::EXCLUSION). Of ready-made effect
    /// sizes of a regression there is only their number.
    std::vector<int> excluded = {};
    std::vector<int> reasons = {};
};

} // namespace host
