#pragma once

#include "meta_analysis/platform/common/KXQueryCancel.h"
#include "meta_analysis/platform/common/ProgressListener.h"
#include "meta_analysis/settings/MARegSettings.h"

namespace MA_NAMESPACE {

/// What a host can attach to a pass over data: its wish to cancel is asked for, and progress is reported,
/// once a step (a record, or a fit), the reports thinned out as the settings say.
class MAProgress
{
public:
    MAProgress(const MARegSettings& settings, ProgressListener* listener)
        : cancel_(settings.GetCancelObject()), listener_(listener), skipped_(settings.GetNSkippedReports())
    {}

    /// One more step is done; false when the host wants to stop.
    bool Step()
    {
        ++done_;
        if (listener_ != nullptr && done_ % (skipped_ + 1L) == 0)
            listener_->Report(done_, 0);
        return cancel_ == nullptr || !cancel_->IsCancelled();
    }

private:
    KXQueryCancel* cancel_;
    ProgressListener* listener_;
    long skipped_;
    long done_ = 0;
};

} // namespace MA_NAMESPACE
