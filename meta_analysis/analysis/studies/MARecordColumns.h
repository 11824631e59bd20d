#pragma once

#include "meta_analysis/analysis/studies/MAStudies.h"

#include <vector>

namespace MA_NAMESPACE {

/// Effect sizes and variances as a regression reads them: an entry per record, missing for the records that
/// are no selected study.
struct MARecordColumns
{
    std::vector<double> effectSizes;
    std::vector<double> variances;
};

/// `recordCount`: records of the last pass that came to its end, or a negative number.
MARecordColumns ColumnsByRecord(const MAStudies& studies, const MASelection& selection, int recordCount);

} // namespace MA_NAMESPACE
