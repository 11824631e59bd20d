#pragma once

#include "meta_analysis/platform/common/Export.h"

/// Receives the progress of running work, on the thread that does it.
class META_ANALYSIS_EXPORT ProgressListener
{
public:
    virtual ~ProgressListener();

    /// `done` of `total` units (records or iterations) are done; `total` is 0 when it is not known.
    virtual void Report(long done, long total) = 0;
};
