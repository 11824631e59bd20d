#pragma once

#include "support/Data.h"

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"

#include <algorithm>

/// An analysis of records held in memory, run once.
template <class Driver>
struct FinishedRun
{
    FinishedRun(const MA_NAMESPACE::MAModelSettings& given, const Rows& rows)
        : settings(given), model(settings)
    {
        VectorRecordIter records(rows);
        status = model.RUN(records, KXVarList());
    }
    FinishedRun(const FinishedRun&) = delete;
    FinishedRun& operator=(const FinishedRun&) = delete;

    std::vector<int> WarningCodes() const
    {
        std::vector<int> codes;
        for (const KXStatus& warning : model.GetWarnings())
            codes.push_back(warning.GetCode());
        return codes;
    }
    bool Warns(int code) const
    {
        const std::vector<int> codes = WarningCodes();
        return std::find(codes.begin(), codes.end(), code) != codes.end();
    }

    MA_NAMESPACE::MAModelSettings settings;
    Driver model;
    KXStatus status;
};
