#pragma once

#include "support/Data.h"

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"

#include <utility>

/// A variable for each value of a record.
inline KXVarList VariablesOf(const Rows& rows)
{
    KXVarList variables;
    for (std::size_t i = 0; i < rows.at(0).size(); ++i)
        variables.AddContVar("v" + std::to_string(i), "");
    return variables;
}

/// A finished run with trim-and-fill and, as the records have variables, the small-study test.
template <class Driver>
struct SmallStudyRun
{
    SmallStudyRun(const MA_NAMESPACE::MAModelSettings& given, const Rows& rows)
        : settings(given), model(settings), records(rows), variables(VariablesOf(rows))
    {
        settings.SetIsTRIMFILL(true);
        status = model.RUN(records, variables);
    }
    SmallStudyRun(const SmallStudyRun&) = delete;
    SmallStudyRun& operator=(const SmallStudyRun&) = delete;

    MA_NAMESPACE::MAModelSettings settings;
    Driver model;
    VectorRecordIter records;
    KXVarList variables;
    KXStatus status;
};
