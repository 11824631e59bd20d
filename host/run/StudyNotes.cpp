#include "host/run/StudyNotes.h"

#include "meta_analysis/settings/MAStatusCode.h"

using namespace MA_NAMESPACE;

namespace host {

StudyNotes StudyNotesOf(const MABaseModel& base)
{
    return {.records = base.GetNonMissingStudyID(),
            .effectConversions = base.GetEffectConversion(),
            .treatmentConversions = base.GetTreatmentConversion(),
            .controlConversions = base.GetControlConversion(),
            .warnedRecords = {{MAStatusCode::INTERVAL_ASYMMETRIC, base.GetAsymmetricIntervalStudyID()},
                              {MAStatusCode::SUMMARY_SKEWED, base.GetSkewedStudyID()},
                              {MAStatusCode::STD_DEV_DOUBTFUL, base.GetDoubtfulStdDevStudyID()},
                              {MAStatusCode::SUBGROUP_VALUE_MISSING, base.GetSubgroupMissing()},
                              {MAStatusCode::CUMULATIVE_VALUE_MISSING, base.GetCumulativeMissing()}}};
}

} // namespace host
