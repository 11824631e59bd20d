// Getters of the records: how many are no studies and why, and which studies have a warning.

#include "meta_analysis/analysis/MAAnalysisResults.h"
#include "meta_analysis/analysis/MAAnalysisState.h"
#include "meta_analysis/analysis/MAResultColumns.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <iterator>

namespace MA_NAMESPACE {

namespace {

/// Empty when memory runs out.
std::vector<int> RecordsWithWarning(const MARecordCounts& counts, int code) noexcept
{
    try {
        std::vector<MARecordWarning> found;
        std::copy_if(counts.warnings.begin(), counts.warnings.end(), std::back_inserter(found),
                     [code](const MARecordWarning& warning) { return warning.code == code; });
        return ValuesOf(found, &MARecordWarning::record);
    } catch (...) {
        return {};
    }
}

} // namespace

int MAAnalysisResults::GetNMissing() const
{
    return Results().counts.missing;
}

int MAAnalysisResults::GetNInvalid() const
{
    return Results().counts.invalid;
}

int MAAnalysisResults::GetNDropped() const
{
    return Results().counts.dropped;
}

std::vector<int> MAAnalysisResults::GetExcludedRecord() const
{
    return FieldOf(Results().counts.excluded, &MAExclusion::record);
}

std::vector<int> MAAnalysisResults::GetExclusionReason() const
{
    return FieldOf(Results().counts.excluded, [](const MAExclusion& one) { return int{one.reason}; });
}

std::vector<int> MAAnalysisResults::GetAsymmetricIntervalStudyID() const
{
    return RecordsWithWarning(Results().counts, MAStatusCode::INTERVAL_ASYMMETRIC);
}

std::vector<int> MAAnalysisResults::GetSkewedStudyID() const
{
    return RecordsWithWarning(Results().counts, MAStatusCode::SUMMARY_SKEWED);
}

std::vector<int> MAAnalysisResults::GetDoubtfulStdDevStudyID() const
{
    return RecordsWithWarning(Results().counts, MAStatusCode::STD_DEV_DOUBTFUL);
}

std::vector<int> MAAnalysisResults::GetNonIntegerCountStudyID() const
{
    return RecordsWithWarning(Results().counts, MAStatusCode::NON_INTEGER_COUNTS);
}

std::vector<int> MAAnalysisResults::GetEmptyGroupStudyID() const
{
    return RecordsWithWarning(Results().counts, MAStatusCode::EMPTY_GROUP);
}

} // namespace MA_NAMESPACE
