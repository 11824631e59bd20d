#pragma once

#include "host/DataTable.h"
#include "host/Options.h"

#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/settings/MAModelSettings.h"

#include <string>
#include <vector>

namespace host {

/// All that an analysis is given: settings with the positions of the columns, and the data.
struct Request
{
    MA_NAMESPACE::MAModelSettings settings;
    KXVarList variables;
    VectorRecordIter records;
    std::vector<std::string> studyLabels; ///< one a record
};

/// Picks the columns that the options name. Throws UnusableInput.
Request MakeRequest(const Options& options, const DataTable& table);

} // namespace host
