#pragma once

#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <cmath>

namespace MA_NAMESPACE {

/// Positions the iterator at the first record. Errors: ITERATOR_FAILED it reports a failure,
/// ITERATOR_NOT_STARTED it cannot be positioned.
inline KXStatus StartPass(MultiPassRecordIter& records)
{
    if (records.GetError() != 0)
        return KXStatus(MAStatusCode::ITERATOR_FAILED);
    if (!records.Start())
        return KXStatus(MAStatusCode::ITERATOR_NOT_STARTED);
    return KXStatus();
}

/// Calls `visit(record, recordNumber)` for every record of a started pass, and stores their number when it
/// comes to its end. Error ITERATOR_FAILED when the iterator failed on the way: a broken pass must not look
/// like the end of the data.
template <class Visit>
KXStatus ReadPass(MultiPassRecordIter& records, int& recordCount, Visit visit)
{
    int count = 0;
    while (const Record* record = records.Next())
        visit(*record, count++);
    if (records.GetError() != 0)
        return KXStatus(MAStatusCode::ITERATOR_FAILED);
    recordCount = count;
    return KXStatus();
}

/// A study quantity of a record. A NaN counts as missing: a single one would make every pooled number NaN
/// and break the order of groups and sorts.
inline double ReadStudyValue(const Record& record, int index)
{
    const double value = record.Get(index);
    return std::isnan(value) ? KXMV::Missing() : value;
}

} // namespace MA_NAMESPACE
