#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// A record that is no study.
struct ExcludedRecord
{
    int record;         ///< from 0
    std::size_t reason; ///< its position among the reasons of the summary
};

/// How many records were read, used and left out, and why.
struct RecordSummary
{
    std::size_t read = 0;
    std::vector<int> used = {}; ///< their numbers, from 0
    int missing = 0;
    int invalid = 0;
    int dropped = 0;
    std::vector<ExcludedRecord> excluded = {}; ///< by record
    std::vector<std::string> reasons = {};     ///< in words, each once; few, however many records there are

    void Exclude(int record, const std::string& reason)
    {
        const auto found = std::find(reasons.begin(), reasons.end(), reason);
        excluded.push_back({record, static_cast<std::size_t>(found - reasons.begin())});
        if (found == reasons.end())
            reasons.push_back(reason);
    }

    const std::string& ReasonOf(const ExcludedRecord& one) const { return reasons[one.reason]; }

    /// The number of records of each reason.
    std::vector<std::size_t> CountsByReason() const
    {
        std::vector<std::size_t> counts(reasons.size(), 0);
        for (const ExcludedRecord& one : excluded)
            ++counts[one.reason];
        return counts;
    }
};

} // namespace host
