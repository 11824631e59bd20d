#pragma once

#include "support/Data.h"

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"

#include <algorithm>

inline std::vector<int> CodesOf(const std::vector<KXStatus>& warnings)
{
    std::vector<int> codes;
    for (const KXStatus& warning : warnings)
        codes.push_back(warning.GetCode());
    return codes;
}

/// A variable for each value of a record.
inline KXVarList VariablesOf(const Rows& rows)
{
    KXVarList variables;
    for (std::size_t i = 0; i < rows.at(0).size(); ++i)
        variables.AddContVar("v" + std::to_string(i), "");
    return variables;
}

/// An analysis of records held in memory, run once.
template <class Driver>
struct FinishedRun
{
    FinishedRun(const MA_NAMESPACE::MAModelSettings& given, const Rows& rows, const KXVarList& named = {})
        : settings(given),
          model(settings),
          records(rows),
          variables(named),
          status(model.RUN(records, variables))
    {}
    FinishedRun(const FinishedRun&) = delete;
    FinishedRun& operator=(const FinishedRun&) = delete;

    std::vector<int> WarningCodes() const { return CodesOf(model.GetWarnings()); }
    bool Warns(int code) const
    {
        const std::vector<int> codes = WarningCodes();
        return std::find(codes.begin(), codes.end(), code) != codes.end();
    }

    MA_NAMESPACE::MAModelSettings settings;
    Driver model;
    VectorRecordIter records;
    KXVarList variables;
    KXStatus status;
};

inline MA_NAMESPACE::MAModelSettings WithTrimFill(MA_NAMESPACE::MAModelSettings settings)
{
    settings.SetIsTRIMFILL(true);
    return settings;
}

/// A run with trim-and-fill and, as the records have variables, with the small-study test.
template <class Driver>
struct SmallStudyRun : FinishedRun<Driver>
{
    SmallStudyRun(const MA_NAMESPACE::MAModelSettings& given, const Rows& rows)
        : FinishedRun<Driver>(WithTrimFill(given), rows, VariablesOf(rows))
    {}
};
