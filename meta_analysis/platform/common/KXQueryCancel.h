#pragma once

#include "meta_analysis/platform/common/Export.h"

/// The host's answer to whether running work shall stop. Asked on the thread that does the work.
class META_ANALYSIS_EXPORT KXQueryCancel
{
public:
    virtual ~KXQueryCancel();

    /// True to stop the work at the next opportunity.
    virtual bool IsCancelled() = 0;
};
