#pragma once

#include "meta_analysis/analysis/studies/MAStudies.h"
#include "meta_analysis/platform/common/KXStatus.h"

#include <vector>

namespace MA_NAMESPACE {

/// A record that is no study.
struct MAExclusion
{
    int record; ///< from 0
    MAConst::EXCLUSION reason;
};

/// A record with a warning of its own.
struct MARecordWarning
{
    int record; ///< from 0
    int code;
};

/// How many records a pass had, and which of them are no study. A record is missing when a value that its
/// study needs is missing, else invalid when the values cannot be a study's, else dropped when the settings
/// leave it out.
struct MARecordCounts
{
    static constexpr int unread = -1;

    int records = unread; ///< of the last pass that came to its end
    int missing = 0;
    int invalid = 0;
    int dropped = 0;
    std::vector<MAExclusion> excluded; ///< one a missing, invalid or dropped record
    std::vector<MARecordWarning> warnings;
    std::vector<int> withoutSubgroup;   ///< records of studies that the settings omit from groups
    std::vector<int> withoutCumulative; ///< and from cumulative steps, for want of a value

    void Exclude(int record, MAConst::EXCLUSION reason)
    {
        excluded.push_back({record, reason});
        if (reason == MAConst::EXCLUSION_MISSING_VALUE)
            ++missing;
        else if (reason == MAConst::EXCLUSION_DROPPED)
            ++dropped;
        else
            ++invalid;
    }
};

/// What reading the records yields. After an error the counts say how far the pass came.
struct MAReading
{
    KXStatus status;
    MAStudies studies;
    MARecordCounts counts;
    std::vector<int> warnings; ///< codes
};

} // namespace MA_NAMESPACE
