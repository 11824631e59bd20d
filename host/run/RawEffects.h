#pragma once

#include "host/cli/Options.h"
#include "host/data/DataTable.h"
#include "host/run/RecordSummary.h"
#include "host/run/StudyNotes.h"

#include "meta_analysis/platform/common/KXStatus.h"

#include <vector>

namespace host {

/// The effect sizes that a regression is of, when they are computed from raw data.
struct RawEffects
{
    std::vector<double> effects; ///< one a record, missing where the driver left it out
    std::vector<double> variances;
    RecordSummary records;
    std::vector<KXStatus> warnings;
    StudyNotes notes;
};

/// Computes them by the driver of the outcome. Throws std::bad_alloc when its memory runs out.
RawEffects ComputeRawEffects(const Options& options, const DataTable& table);

} // namespace host
