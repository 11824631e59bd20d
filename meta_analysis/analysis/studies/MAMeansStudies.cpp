#include "meta_analysis/analysis/studies/MAMeansStudies.h"

#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/effectsize/MAContinousEffectSize.h"
#include "meta_analysis/platform/common/CopyOf.h"
#include "meta_analysis/settings/Guarded.h"

#include <cmath>
#include <utility>

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

MAGroupMeans ReadGroupMeans(const Record& record, const MAModelSettings& settings)
{
    return {ReadStudyValue(record, settings.GetTreatmentNVarIndex()),
            ReadStudyValue(record, settings.GetControlNVarIndex()),
            ReadStudyValue(record, settings.GetTreatmentMeanVarIndex()),
            ReadStudyValue(record, settings.GetControlMeanVarIndex()),
            ReadStdDev(record, settings.GetTreatmentStdErrorIndex(), settings.GetTreatMentVarianceIndex()),
            ReadStdDev(record, settings.GetControlStdErrorIndex(), settings.GetControlVarianceIndex())};
}

bool HasMissing(const MAGroupMeans& means)
{
    for (const double value : {means.treatmentSize, means.controlSize, means.treatmentMean, means.controlMean,
                               means.treatmentStdDev, means.controlStdDev}) {
        if (KXMV::IsMissing(value))
            return true;
    }
    return false;
}

bool IsInvalid(const MAGroupMeans& means)
{
    return means.treatmentSize < 2.0 || means.controlSize < 2.0 || means.treatmentStdDev <= 0.0 ||
           means.controlStdDev <= 0.0;
}

void Classify(const MAGroupMeans& means, int recordNumber, MAReading& reading)
{
    if (HasMissing(means)) {
        ++reading.counts.missing;
    } else if (IsInvalid(means)) {
        ++reading.counts.invalid;
    } else {
        reading.studies.recordNumber.push_back(recordNumber);
        reading.studies.sampleSize.push_back(means.treatmentSize + means.controlSize);
        reading.studies.means.push_back(means);
    }
}

struct MeansColumns
{
    explicit MeansColumns(const std::vector<MAGroupMeans>& means)
        : treatmentSize(FieldOf(means, &MAGroupMeans::treatmentSize)),
          controlSize(FieldOf(means, &MAGroupMeans::controlSize)),
          treatmentMean(FieldOf(means, &MAGroupMeans::treatmentMean)),
          controlMean(FieldOf(means, &MAGroupMeans::controlMean)),
          treatmentStdDev(FieldOf(means, &MAGroupMeans::treatmentStdDev)),
          controlStdDev(FieldOf(means, &MAGroupMeans::controlStdDev))
    {
        RequireLength(means.size(), treatmentSize, controlSize, treatmentMean, controlMean, treatmentStdDev,
                      controlStdDev);
    }

    std::vector<double> treatmentSize;
    std::vector<double> controlSize;
    std::vector<double> treatmentMean;
    std::vector<double> controlMean;
    std::vector<double> treatmentStdDev;
    std::vector<double> controlStdDev;
};

void TakeEffects(const MAContinousEffectSize& effects, MAStudies& studies)
{
    studies.effectSize = effects.GetEffectSizeVal();
    studies.variance = effects.GetEffectSizeVariance();
    const std::vector<double> stdErrors = effects.GetEffectSizeStdError();
    const std::vector<double> zValues = effects.GetEffectSizeZVal();
    const std::vector<double> pValues = effects.GetEffectSizeSig();
    const std::vector<double> lower = effects.GetEffectSizeCILower();
    const std::vector<double> upper = effects.GetEffectSizeCIUpper();
    RequireLength(studies.Count(), studies.variance, stdErrors, zValues, pValues, lower, upper);
    for (std::size_t i = 0; i < studies.Count(); ++i)
        studies.tests.push_back({stdErrors[i], zValues[i], pValues[i], lower[i], upper[i]});
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
        Classify(ReadGroupMeans(record, settings), recordNumber, reading);
    });
    return reading;
}

MAMeansStudies WithMeansEffects(MAStudies studies, const MAModelSettings& settings, double alpha)
{
    const MeansColumns columns(studies.means);
    MAContinousEffectSize effects;
    effects.SetTreatmentGSizes(&columns.treatmentSize);
    effects.SetControlGSizes(&columns.controlSize);
    effects.SetTreatmentGMeans(&columns.treatmentMean);
    effects.SetControlGMeans(&columns.controlMean);
    effects.SetTreatmentGStdErrors(&columns.treatmentStdDev);
    effects.SetControlGStdErrors(&columns.controlStdDev);
    effects.SetSignLevel(alpha);
    effects.SetEqualAssumptionofVariance(settings.GetVarEqualAssumption());
    effects.SetVarianceAdjustment(settings.GetVarianceAdjustment());
    effects.SetGlassDsVarianceDependent(settings.GetGlassDsVarDependentGroup());
    effects.SetEstimationMethod(settings.GetContinousEstType());
    const KXStatus status = effects.ComputeEffectSizeStatistics();
    if (!status.IsError())
        TakeEffects(effects, studies);
    return {status, std::move(studies)};
}

} // namespace MA_NAMESPACE
