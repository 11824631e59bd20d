#include "meta_analysis/analysis/studies/MAMeansStudies.h"

#include "meta_analysis/analysis/studies/MADoubtfulCounts.h"
#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/effectsize/MAConversions.h"
#include "meta_analysis/effectsize/MAMeansRule.h"
#include "meta_analysis/effectsize/MAStudyEstimate.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <cmath>

namespace MA_NAMESPACE {

namespace {

/// The standard deviation of a group: read, or else derived from its variance. A variance of 0 or less gives
/// a standard deviation of 0 or less, so that the study is found invalid; a missing one stays missing.
double ReadStdDev(const Record& record, int stdDevIndex, int varianceIndex)
{
    if (stdDevIndex != -1)
        return ReadStudyValue(record, stdDevIndex);
    const double variance = ReadStudyValue(record, varianceIndex);
    if (KXMV::IsMissing(variance))
        return variance;
    return variance > 0.0 ? std::sqrt(variance) : -std::sqrt(std::abs(variance));
}

/// The variables of a group.
struct GroupVariables
{
    int size;
    int mean;
    int stdDev;
    int variance;
    int median;
    int q1;
    int q3;
    int minimum;
    int maximum;

    bool NameMean() const { return mean != -1 && (stdDev != -1 || variance != -1); }
    bool NameMedian() const
    {
        return median != -1 && ((q1 != -1 && q3 != -1) || (minimum != -1 && maximum != -1));
    }
    bool AreNamed() const { return size != -1 && (NameMean() || NameMedian()); }
};

GroupVariables TreatmentOf(const MAModelSettings& settings)
{
    return {settings.GetTreatmentNVarIndex(),     settings.GetTreatmentMeanVarIndex(),
            settings.GetTreatmentStdErrorIndex(), settings.GetTreatMentVarianceIndex(),
            settings.GetTreatmentMedianIndex(),   settings.GetTreatmentQ1Index(),
            settings.GetTreatmentQ3Index(),       settings.GetTreatmentMinIndex(),
            settings.GetTreatmentMaxIndex()};
}

GroupVariables ControlOf(const MAModelSettings& settings)
{
    return {settings.GetControlNVarIndex(),     settings.GetControlMeanVarIndex(),
            settings.GetControlStdErrorIndex(), settings.GetControlVarianceIndex(),
            settings.GetControlMedianIndex(),   settings.GetControlQ1Index(),
            settings.GetControlQ3Index(),       settings.GetControlMinIndex(),
            settings.GetControlMaxIndex()};
}

/// The size, mean and standard deviation of a group.
struct Group
{
    double size;
    MAConvertedMean mean;
};

Group ReadGroup(const Record& record, const GroupVariables& variables)
{
    const double size = ReadStudyValue(record, variables.size);
    const double mean = ReadStudyValue(record, variables.mean);
    const double stdDev = ReadStdDev(record, variables.stdDev, variables.variance);
    const bool hasMean = !KXMV::IsMissing(mean) && !KXMV::IsMissing(stdDev);
    if (!hasMean && variables.NameMedian())
        return {size, MeanOfSummary(
                          {size, ReadStudyValue(record, variables.minimum),
                           ReadStudyValue(record, variables.q1), ReadStudyValue(record, variables.median),
                           ReadStudyValue(record, variables.q3), ReadStudyValue(record, variables.maximum)})};
    return {size, {ReasonOfGroup(size, mean, stdDev), MAConst::CONVERSION_NONE, mean, stdDev, false}};
}

void Classify(const Group& treatment, const Group& control, bool hasConversions, int recordNumber,
              MAReading& reading)
{
    const MAConst::EXCLUSION reason = ReasonOfStudy(treatment.mean.status, control.mean.status);
    if (reason != MAConst::EXCLUSION_NONE) {
        reading.counts.Exclude(recordNumber, reason);
        return;
    }
    const MAMeans means = {treatment.size,    control.size,          treatment.mean.mean,
                           control.mean.mean, treatment.mean.stdDev, control.mean.stdDev};
    reading.studies.recordNumber.push_back(recordNumber);
    reading.studies.sampleSize.push_back(means.Size());
    reading.studies.means.push_back(means);
    if (hasConversions)
        reading.studies.groupConversions.push_back({treatment.mean.from, control.mean.from});
    if (treatment.mean.isSkewed || control.mean.isSkewed)
        reading.counts.warnings.push_back({recordNumber, MAStatusCode::SUMMARY_SKEWED});
    WarnOfCounts(means, recordNumber, reading.counts);
}

} // namespace

bool NamesMeans(const MAModelSettings& settings)
{
    return TreatmentOf(settings).AreNamed() && ControlOf(settings).AreNamed();
}

MAReading ReadMeans(MultiPassRecordIter& records, const MAModelSettings& settings)
{
    const GroupVariables treatment = TreatmentOf(settings);
    const GroupVariables control = ControlOf(settings);
    const bool hasConversions = treatment.NameMedian() || control.NameMedian();
    MAReading reading;
    reading.status = ReadPass(records, reading.counts.records, [&](const Record& record, int recordNumber) {
        Classify(ReadGroup(record, treatment), ReadGroup(record, control), hasConversions, recordNumber,
                 reading);
    });
    return reading;
}

MAStudies WithMeansEffects(MAStudies studies, const MAMeansChoice& choice, double alpha)
{
    if (!IsMeasure(choice.measure))
        return studies;
    const double quantile = TwoSidedNormalQuantile(alpha);
    studies.effectSize.reserve(studies.means.size());
    studies.variance.reserve(studies.means.size());
    studies.tests.reserve(studies.means.size());
    for (const MAMeans& means : studies.means) {
        const MAMeansEffect study = EffectOf(means, choice);
        const MAEstimate estimate = InferNormal(study.effect, study.variance, 0.0, quantile);
        studies.effectSize.push_back(estimate.estimate);
        studies.variance.push_back(estimate.variance);
        studies.tests.push_back(TestOf(estimate));
    }
    return studies;
}

} // namespace MA_NAMESPACE
