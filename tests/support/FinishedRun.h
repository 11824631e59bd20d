#pragma once

#include "support/Data.h"

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"

/// An analysis of records held in memory, run once; the settings must outlive it.
template <class Driver>
struct FinishedRun
{
    FinishedRun(const MA_NAMESPACE::MAModelSettings& settings, const Rows& rows) : model(settings)
    {
        VectorRecordIter records(rows);
        status = model.RUN(records, KXVarList());
    }
    FinishedRun(const MA_NAMESPACE::MAModelSettings&& settings, const Rows& rows) = delete;

    std::vector<int> WarningCodes() const
    {
        std::vector<int> codes;
        for (const KXStatus& warning : model.GetWarnings())
            codes.push_back(warning.GetCode());
        return codes;
    }

    Driver model;
    KXStatus status;
};
