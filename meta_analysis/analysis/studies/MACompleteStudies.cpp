#include "meta_analysis/analysis/studies/MACompleteStudies.h"

#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/effectsize/MAPoolable.h"
#include "meta_analysis/effectsize/MARatio.h"
#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <cmath>
#include <utility>

namespace MA_NAMESPACE {

namespace {

/// A ready-made effect size as read.
struct ReadyMade
{
    double effectSize;
    double variance;
    double stdError;
    bool isMissing;
};

/// The variance wins when both it and the standard error are given. Missing is tested on what was read,
/// before anything is derived from it; without either of the two the study is invalid.
ReadyMade ReadReadyMade(const Record& record, const MAModelSettings& settings)
{
    const double effectSize = ReadStudyValue(record, settings.GetInputEffectsizeIndex());
    const bool hasVariance = settings.GetInputVaranceVarIndex() != -1;
    if (!hasVariance && settings.GetInputStdErrorIndex() == -1)
        return {effectSize, 0.0, 0.0, KXMV::IsMissing(effectSize)};
    const double dispersion = ReadStudyValue(record, hasVariance ? settings.GetInputVaranceVarIndex()
                                                                 : settings.GetInputStdErrorIndex());
    return {effectSize, hasVariance ? dispersion : dispersion * dispersion,
            hasVariance ? std::sqrt(dispersion) : dispersion,
            KXMV::IsMissing(effectSize) || KXMV::IsMissing(dispersion)};
}

bool IsInvalid(const ReadyMade& study, const MAModelSettings& settings)
{
    const bool isImpossibleDifference = std::abs(study.effectSize) > 1.0 &&
                                        settings.GetBinaryEstType() == MAConst::BIN_RISK_DIFFERENCE &&
                                        settings.GetOutcomesType() == MAConst::OUTCOME_BINARY;
    return !(study.stdError > 0.0) || !IsPoolable(study.effectSize, study.variance) || isImpossibleDifference;
}

void Append(const ReadyMade& study, double quantile, MAStudies& studies)
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

/// The variables that give each study its subgroup, its place in a cumulative analysis and its contrast
/// coefficients.
class StudyRoles
{
public:
    explicit StudyRoles(const MAModelSettings& settings)
        : groupIndex_(settings.GetSubGroupIndex()),
          cumulativeIndex_(settings.GetCummulativeIndex()),
          contrastIndices_(settings.GetContrastCoefIndex())
    {}

    void Clear(MAStudies& studies) const
    {
        studies.groupValue.clear();
        studies.cumulativeValue.clear();
        studies.contrastCoefficients.assign(contrastIndices_.size(), {});
    }

    /// Contrast coefficients are taken as they are: a NaN among them is a non-zero coefficient.
    void Append(const Record& record, MAStudies& studies) const
    {
        for (std::size_t i = 0; i < contrastIndices_.size(); ++i)
            studies.contrastCoefficients[i].push_back(record.Get(contrastIndices_[i]));
        studies.groupValue.push_back(groupIndex_ == -1 ? MAConst::overallGroup
                                                       : ReadStudyValue(record, groupIndex_));
        if (cumulativeIndex_ != -1)
            studies.cumulativeValue.push_back(ReadStudyValue(record, cumulativeIndex_));
    }

private:
    int groupIndex_;
    int cumulativeIndex_;
    std::vector<int> contrastIndices_;
};

void CheckContrastCount(const MAModelSettings& settings, MAReading& reading)
{
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
        roles.Append(record, studies);
    } else {
        ++reading.counts.invalid;
    }
}

} // namespace

MAReading ReadReadyMadeStudies(MultiPassRecordIter& records, const MAModelSettings& settings, double alpha)
{
    const StudyRoles roles(settings);
    const double quantile = TwoSidedNormalQuantile(alpha);
    MAReading reading;
    roles.Clear(reading.studies);
    reading.status = ReadPass(records, reading.counts.records, [&](const Record& record, int recordNumber) {
        const ReadyMade study = ReadReadyMade(record, settings);
        if (study.isMissing) {
            ++reading.counts.missing;
        } else if (IsInvalid(study, settings)) {
            ++reading.counts.invalid;
        } else {
            reading.studies.recordNumber.push_back(recordNumber);
            Append(study, quantile, reading.studies);
            roles.Append(record, reading.studies);
        }
    });
    if (!reading.status.IsError())
        CheckContrastCount(settings, reading);
    return reading;
}

MAReading CompleteStudies(MultiPassRecordIter& records, const MAModelSettings& settings, MAReading computed)
{
    const StudyRoles roles(settings);
    const int computedFrom = computed.counts.records;
    const std::size_t computedCount = computed.studies.recordNumber.size();
    roles.Clear(computed.studies);
    computed.studies.groupValue.reserve(computedCount);
    Review review = {std::vector<bool>(computedCount, false)};
    computed.status = ReadPass(records, computed.counts.records, [&](const Record& record, int recordNumber) {
        ReviewRecord(record, recordNumber, roles, review, computed);
    });
    if (!computed.status.IsError() && computedFrom != MARecordCounts::unread &&
        computed.counts.records != computedFrom)
        computed.status = KXStatus(MAStatusCode::ITERATOR_FAILED);
    if (computed.status.IsError()) {
        roles.Clear(computed.studies);
        return computed;
    }
    if (review.keptCount != computedCount) {
        computed.studies.Keep(review.kept);
        computed.warnings.push_back(MAStatusCode::STUDIES_REMOVED);
    }
    CheckContrastCount(settings, computed);
    return computed;
}

} // namespace MA_NAMESPACE
