#include "meta_analysis/analysis/studies/MARecordColumns.h"

#include <algorithm>

namespace MA_NAMESPACE {

MARecordColumns ColumnsByRecord(const MAStudies& studies, const MASelection& selection, int recordCount)
{
    // Record numbers ascend; those of a pass that failed may go beyond the records counted before.
    const int lastRecord = studies.recordNumber.empty() ? -1 : studies.recordNumber.back();
    const auto count = static_cast<std::size_t>(std::max({recordCount, lastRecord + 1, 0}));
    MARecordColumns columns;
    columns.effectSizes.assign(count, KXMV::Missing());
    columns.variances.assign(count, KXMV::Missing());
    for (const std::size_t study : selection) {
        const auto record = static_cast<std::size_t>(studies.recordNumber[study]);
        columns.effectSizes[record] = studies.effectSize[study];
        columns.variances[record] = studies.variance[study];
    }
    return columns;
}

} // namespace MA_NAMESPACE
