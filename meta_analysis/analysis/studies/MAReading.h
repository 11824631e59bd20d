#pragma once

#include "meta_analysis/analysis/studies/MAStudies.h"
#include "meta_analysis/platform/common/KXStatus.h"

#include <vector>

namespace MA_NAMESPACE {

/// How many records a pass had, and how many of them are no study. A record is missing when a value that its
/// study needs is missing, else invalid when the values cannot be a study's, else dropped when the settings
/// leave it out.
struct MARecordCounts
{
    static constexpr int unread = -1;

    int records = unread; ///< of the last pass that came to its end
    int missing = 0;
    int invalid = 0;
    int dropped = 0;
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
