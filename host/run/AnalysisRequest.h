#pragma once

#include "host/cli/Options.h"
#include "host/data/DataTable.h"
#include "host/data/RecordLines.h"
#include "host/data/ValueLabels.h"
#include "host/run/ForestRequest.h"
#include "host/text/NumberFormat.h"

#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/settings/MAModelSettings.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

/// The input of an analysis: settings with the positions of the columns, and the data.
struct AnalysisRequest
{
    MA_NAMESPACE::MAModelSettings settings;
    KXVarList variables;
    VectorRecordIter records;
    std::vector<std::string> studyLabels; ///< one a record
    RecordLines lines;
    ValueLabels subgroup; ///< of the columns that part and order the studies, if given
    ValueLabels cumulative;
    std::optional<std::string> label;  ///< of the measure, in place of its own name
    std::vector<int> bubbleCovariates; ///< variables
    bool runsSmallStudyTest = false;
    bool hasDrapery = false;
    bool hasPredictionBand = false;
    ForestRequest forest = {};
    NumberFormat numbers = {}; ///< of everything that shows the results
};

/// Picks the columns that the options name. Throws UnusableInput.
AnalysisRequest MakeAnalysisRequest(const Options& options, const DataTable& table);

} // namespace host
