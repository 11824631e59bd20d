#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/Record.h"

/// Forward access to the host's records.
class META_ANALYSIS_EXPORT RecordIterator
{
public:
    virtual ~RecordIterator();

    /// The next record, or null at the end. It belongs to the iterator and is valid until the next call.
    virtual const Record* Next() = 0;

    /// 0 while all is well; any other value says that reading failed, also when that ended the records.
    virtual int GetError() const = 0;
};

/// Records that can be read more than once: what a host hands to an analysis.
///
/// A pass is `Start`, then `Next` until it returns null, then a look at `GetError`. `Start` may be
/// called again at any time; every pass must yield the same records in the same order.
class META_ANALYSIS_EXPORT MultiPassRecordIter : public RecordIterator
{
public:
    /// Positions the iterator at its first record; false when that is not possible. An empty data set
    /// starts successfully and yields no record.
    virtual bool Start() = 0;

    /// Rewinds a started iterator for another pass; false when that is not possible.
    virtual bool Reset() = 0;
};
