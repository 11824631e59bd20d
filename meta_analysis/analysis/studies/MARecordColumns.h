#pragma once

#include "meta_analysis/platform/common/KXMV.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// Effect sizes and variances as a regression reads them: an entry per record, missing for the records that
/// are no study.
struct MARecordColumns
{
    explicit MARecordColumns(int recordCount)
        : effectSizes(static_cast<std::size_t>(recordCount), KXMV::Missing()), variances(effectSizes)
    {}

    std::vector<double> effectSizes;
    std::vector<double> variances;
};

} // namespace MA_NAMESPACE
