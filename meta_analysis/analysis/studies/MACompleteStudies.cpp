#include "meta_analysis/analysis/studies/MACompleteStudies.h"

#include "meta_analysis/analysis/studies/MAReadyMade.h"
#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/effectsize/MAPoolable.h"
#include "meta_analysis/effectsize/MARatio.h"
#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>

namespace MA_NAMESPACE {

namespace {

void Append(const MAReadyMade& study, double quantile, MAStudies& studies)
{
    const double z = study.effectSize / study.stdError;
    const double lower = study.effectSize - quantile * study.stdError;
    const double upper = study.effectSize + quantile * study.stdError;
    studies.effectSize.push_back(study.effectSize);
    studies.variance.push_back(study.variance);
    studies.tests.push_back({study.stdError, z, TwoSidedNormalPValue(z).value, lower, upper});
    studies.ratios.push_back({RatioOf(study.effectSize), RatioOf(study.variance), RatioOf(study.stdError),
                              RatioOf(lower), RatioOf(upper)});
}

void Classify(const MAReadyMade& study, int recordNumber, double quantile, bool hasConversions,
              MAReading& reading)
{
    if (study.status != MAConst::EXCLUSION_NONE) {
        reading.counts.Exclude(recordNumber, study.status);
        return;
    }
    reading.studies.recordNumber.push_back(recordNumber);
    Append(study, quantile, reading.studies);
    if (hasConversions)
        reading.studies.effectConversions.push_back(study.from);
    if (study.isAsymmetric)
        reading.counts.warnings.push_back({recordNumber, MAStatusCode::INTERVAL_ASYMMETRIC});
}

/// The variables that give each study its subgroup, its place in a cumulative analysis and its contrast
/// coefficients.
class StudyRoles
{
public:
    explicit StudyRoles(const MAModelSettings& settings)
        : groupIndex_(settings.GetSubGroupIndex()),
          cumulativeIndex_(settings.GetCummulativeIndex()),
          contrastIndices_(settings.GetContrastCoefIndex()),
          omitsMissingGroup_(groupIndex_ != -1 && settings.GetOmitMissingSubgroup()),
          omitsMissingCumulative_(cumulativeIndex_ != -1 && settings.GetOmitMissingCumulative())
    {}

    void Clear(MAStudies& studies, MARecordCounts& counts) const
    {
        studies.groupValue.clear();
        studies.cumulativeValue.clear();
        studies.isGrouped.clear();
        studies.contrastCoefficients.assign(contrastIndices_.size(), {});
        counts.withoutSubgroup.clear();
        counts.withoutCumulative.clear();
    }

    /// Contrast coefficients are taken as they are: a NaN among them is a non-zero coefficient.
    void Append(const Record& record, int recordNumber, MAReading& reading) const
    {
        MAStudies& studies = reading.studies;
        for (std::size_t i = 0; i < contrastIndices_.size(); ++i)
            studies.contrastCoefficients[i].push_back(record.Get(contrastIndices_[i]));
        studies.groupValue.push_back(groupIndex_ == -1 ? MAConst::overallGroup
                                                       : ReadStudyValue(record, groupIndex_));
        if (cumulativeIndex_ != -1)
            studies.cumulativeValue.push_back(ReadStudyValue(record, cumulativeIndex_));
        AppendIsGrouped(recordNumber, reading);
    }

private:
    /// The column begins with the first study that is in no group.
    void AppendIsGrouped(int recordNumber, MAReading& reading) const
    {
        MAStudies& studies = reading.studies;
        const bool lacksGroup = omitsMissingGroup_ && KXMV::IsMissing(studies.groupValue.back());
        const bool lacksPlace = omitsMissingCumulative_ && KXMV::IsMissing(studies.cumulativeValue.back());
        if (lacksGroup)
            reading.counts.withoutSubgroup.push_back(recordNumber);
        if (lacksPlace)
            reading.counts.withoutCumulative.push_back(recordNumber);
        if (!lacksGroup && !lacksPlace && !studies.HasUngrouped())
            return;
        studies.isGrouped.resize(studies.groupValue.size(), true);
        studies.isGrouped.back() = !lacksGroup && !lacksPlace;
    }

    int groupIndex_;
    int cumulativeIndex_;
    std::vector<int> contrastIndices_;
    bool omitsMissingGroup_;
    bool omitsMissingCumulative_;
};

void WarnOfRoles(const MAModelSettings& settings, MAReading& reading)
{
    if (!reading.counts.withoutSubgroup.empty())
        reading.warnings.push_back(MAStatusCode::SUBGROUP_VALUE_MISSING);
    if (!reading.counts.withoutCumulative.empty())
        reading.warnings.push_back(MAStatusCode::CUMULATIVE_VALUE_MISSING);
    if (settings.GetInputContrastCoef().size() != static_cast<std::size_t>(reading.counts.records))
        reading.warnings.push_back(MAStatusCode::CONTRAST_COUNT_MISMATCH);
}

/// A measure outside the enumeration has no effect sizes at all.
bool CanPool(const MAStudies& studies, std::size_t study)
{
    return study < studies.Count() && IsPoolable(studies.effectSize[study], studies.variance[study]);
}

/// What the second pass over the records of computed studies found.
struct Review
{
    std::vector<bool> kept;
    std::size_t next = 0; ///< study whose record comes next: records and studies both ascend
    std::size_t keptCount = 0;
};

void ReviewRecord(const Record& record, int recordNumber, const StudyRoles& roles, Review& review,
                  MAReading& reading)
{
    MAStudies& studies = reading.studies;
    if (review.next == review.kept.size() || studies.recordNumber[review.next] != recordNumber)
        return;
    const bool isKept = CanPool(studies, review.next);
    review.kept[review.next++] = isKept;
    if (isKept) {
        ++review.keptCount;
        roles.Append(record, recordNumber, reading);
    } else {
        reading.counts.Exclude(recordNumber, MAConst::EXCLUSION_NOT_POOLABLE);
    }
}

/// The second pass excludes records behind those of the first.
void SortExclusions(std::vector<MAExclusion>& excluded)
{
    std::sort(excluded.begin(), excluded.end(),
              [](const MAExclusion& one, const MAExclusion& other) { return one.record < other.record; });
}

} // namespace

MAReading ReadReadyMadeStudies(MultiPassRecordIter& records, const MAModelSettings& settings, double alpha)
{
    const StudyRoles roles(settings);
    const double quantile = TwoSidedNormalQuantile(alpha);
    const bool hasConversions = NamesConversions(settings);
    MAReading reading;
    roles.Clear(reading.studies, reading.counts);
    reading.status = ReadPass(records, reading.counts.records, [&](const Record& record, int recordNumber) {
        const MAReadyMade study = ReadReadyMade(record, settings);
        Classify(study, recordNumber, quantile, hasConversions, reading);
        if (study.status == MAConst::EXCLUSION_NONE)
            roles.Append(record, recordNumber, reading);
    });
    if (!reading.status.IsError())
        WarnOfRoles(settings, reading);
    return reading;
}

MAReading CompleteStudies(MultiPassRecordIter& records, const MAModelSettings& settings, MAReading computed)
{
    const StudyRoles roles(settings);
    const int computedFrom = computed.counts.records;
    const std::size_t computedCount = computed.studies.recordNumber.size();
    roles.Clear(computed.studies, computed.counts);
    computed.studies.groupValue.reserve(computedCount);
    Review review = {std::vector<bool>(computedCount, false)};
    computed.status = ReadPass(records, computed.counts.records, [&](const Record& record, int recordNumber) {
        ReviewRecord(record, recordNumber, roles, review, computed);
    });
    if (!computed.status.IsError() && computedFrom != MARecordCounts::unread &&
        computed.counts.records != computedFrom)
        computed.status = KXStatus(MAStatusCode::ITERATOR_FAILED);
    if (computed.status.IsError()) {
        roles.Clear(computed.studies, computed.counts);
        return computed;
    }
    if (review.keptCount != computedCount) {
        computed.studies.Keep(review.kept);
        SortExclusions(computed.counts.excluded);
        computed.warnings.push_back(MAStatusCode::STUDIES_REMOVED);
    }
    WarnOfRoles(settings, computed);
    return computed;
}

} // namespace MA_NAMESPACE
