#include "meta_analysis/analysis/studies/MAMeansStudies.h"

#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/effectsize/MAStudyEstimate.h"

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

MAMeans ReadMeansOf(const Record& record, const MAModelSettings& settings)
{
    return {ReadStudyValue(record, settings.GetTreatmentNVarIndex()),
            ReadStudyValue(record, settings.GetControlNVarIndex()),
            ReadStudyValue(record, settings.GetTreatmentMeanVarIndex()),
            ReadStudyValue(record, settings.GetControlMeanVarIndex()),
            ReadStdDev(record, settings.GetTreatmentStdErrorIndex(), settings.GetTreatMentVarianceIndex()),
            ReadStdDev(record, settings.GetControlStdErrorIndex(), settings.GetControlVarianceIndex())};
}

bool HasMissing(const MAMeans& means)
{
    for (const double value : {means.nt, means.nc, means.xt, means.xc, means.st, means.sc}) {
        if (KXMV::IsMissing(value))
            return true;
    }
    return false;
}

bool IsInvalid(const MAMeans& means)
{
    return means.nt < 2.0 || means.nc < 2.0 || means.st <= 0.0 || means.sc <= 0.0;
}

void Classify(const MAMeans& means, int recordNumber, MAReading& reading)
{
    if (HasMissing(means)) {
        ++reading.counts.missing;
    } else if (IsInvalid(means)) {
        ++reading.counts.invalid;
    } else {
        reading.studies.recordNumber.push_back(recordNumber);
        reading.studies.sampleSize.push_back(means.Size());
        reading.studies.means.push_back(means);
    }
}

} // namespace

bool NamesMeans(const MAModelSettings& settings)
{
    const bool namesSizesAndMeans =
        settings.GetTreatmentNVarIndex() != -1 && settings.GetControlNVarIndex() != -1 &&
        settings.GetTreatmentMeanVarIndex() != -1 && settings.GetControlMeanVarIndex() != -1;
    const bool namesTreatmentDispersion =
        settings.GetTreatMentVarianceIndex() != -1 || settings.GetTreatmentStdErrorIndex() != -1;
    const bool namesControlDispersion =
        settings.GetControlVarianceIndex() != -1 || settings.GetControlStdErrorIndex() != -1;
    return namesSizesAndMeans && namesTreatmentDispersion && namesControlDispersion;
}

MAReading ReadMeans(MultiPassRecordIter& records, const MAModelSettings& settings)
{
    MAReading reading;
    reading.status = ReadPass(records, reading.counts.records, [&](const Record& record, int recordNumber) {
        Classify(ReadMeansOf(record, settings), recordNumber, reading);
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
