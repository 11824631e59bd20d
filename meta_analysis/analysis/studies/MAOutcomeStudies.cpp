#include "meta_analysis/analysis/studies/MAOutcomeStudies.h"

#include "meta_analysis/analysis/studies/MACountVariables.h"
#include "meta_analysis/analysis/studies/MADoubtfulCounts.h"
#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/effectsize/MAOutcomeEffects.h"
#include "meta_analysis/inference/MAInference.h"
#include "meta_analysis/settings/MAOutcomeMeasures.h"

#include <algorithm>
#include <initializer_list>
#include <type_traits>
#include <utility>

namespace MA_NAMESPACE {

namespace {

bool AreGiven(std::initializer_list<int> variables)
{
    return std::find(variables.begin(), variables.end(), -1) == variables.end();
}

/// The values of a record as those of a study.
template <class Study>
Study ReadStudy(const Record& record, const MAModelSettings& settings);

MAGroupVariables CountsOf(const MAModelSettings& settings)
{
    return {settings.GetEventsIndex(), settings.GetNonEventsIndex(), settings.GetSizeIndex()};
}

template <>
MAProportion ReadStudy(const Record& record, const MAModelSettings& settings)
{
    const MAGroupVariables variables = CountsOf(settings);
    return {ReadStudyValue(record, variables.events), variables.ReadNonEvents(record)};
}

template <>
MARate ReadStudy(const Record& record, const MAModelSettings& settings)
{
    return {ReadStudyValue(record, settings.GetEventsIndex()),
            ReadStudyValue(record, settings.GetTimeIndex())};
}

template <>
MACorrelation ReadStudy(const Record& record, const MAModelSettings& settings)
{
    return {ReadStudyValue(record, settings.GetCorrelationIndex()),
            ReadStudyValue(record, settings.GetSizeIndex())};
}

template <>
MAMean ReadStudy(const Record& record, const MAModelSettings& settings)
{
    return {ReadStudyValue(record, settings.GetSizeIndex()), ReadStudyValue(record, settings.GetMeanIndex()),
            ReadStudyValue(record, settings.GetStdDevIndex())};
}

template <>
MAGroupRates ReadStudy(const Record& record, const MAModelSettings& settings)
{
    return {ReadStudyValue(record, settings.GetTreatmentSuccessVarIndex()),
            ReadStudyValue(record, settings.GetTreatmentTimeIndex()),
            ReadStudyValue(record, settings.GetControlSuccessVarIndex()),
            ReadStudyValue(record, settings.GetControlTimeIndex())};
}

template <class Study>
MAConst::EXCLUSION FlawOf(const Study& study, const MAModelSettings& /*settings*/)
{
    return study.Flaw();
}

MAConst::EXCLUSION FlawOf(const MAProportion& study, const MAModelSettings& settings)
{
    const MAConst::EXCLUSION flaw = study.Flaw();
    const bool hasTooManyEvents = study.nonEvents < 0.0 && CountsOf(settings).UsesSize();
    return flaw == MAConst::EXCLUSION_NEGATIVE_COUNT && hasTooManyEvents
               ? MAConst::EXCLUSION_EVENTS_ABOVE_SIZE
               : flaw;
}

/// Studies as read, in record order.
template <class Study>
std::vector<Study> ReadRaw(MultiPassRecordIter& records, const MAModelSettings& settings, MAReading& reading)
{
    std::vector<Study> raw;
    reading.status = ReadPass(records, reading.counts.records, [&](const Record& record, int recordNumber) {
        const auto study = ReadStudy<Study>(record, settings);
        const MAConst::EXCLUSION flaw = FlawOf(study, settings);
        if (flaw != MAConst::EXCLUSION_NONE) {
            reading.counts.Exclude(recordNumber, flaw);
            return;
        }
        reading.studies.recordNumber.push_back(recordNumber);
        raw.push_back(study);
        WarnOfCounts(study, recordNumber, reading.counts);
    });
    return raw;
}

/// The groups of a rate have times, and no size.
template <class Study>
void AppendSize(const Study& study, MAStudies& studies)
{
    if constexpr (requires { study.Size(); })
        studies.sampleSize.push_back(study.Size());
}

void AppendEffect(const MAOutcomeEffect& study, double quantile, MAStudies& studies)
{
    const MAEstimate estimate = InferNormal(study.effect, study.variance, 0.0, quantile);
    studies.effectSize.push_back(estimate.estimate);
    studies.variance.push_back(estimate.variance);
    studies.tests.push_back(TestOf(estimate));
}

template <class Measure>
void AppendEffects(const std::vector<typename Measure::Study>& raw, double quantile, MAStudies& studies)
{
    for (const typename Measure::Study& study : raw) {
        AppendSize(study, studies);
        AppendEffect(Measure::Effect(study), quantile, studies);
    }
}

/// Zeros are corrected for the effects; sizes are those read.
template <class Measure>
void AppendCorrectedEffects(const std::vector<typename Measure::Study>& raw,
                            const MAZeroCorrection& correction, double quantile, MAStudies& studies)
{
    for (const typename Measure::Study& study : raw) {
        AppendSize(study, studies);
        studies.addedToCounts.push_back(correction.AddedTo(study));
        AppendEffect(Measure::Effect(correction.Corrected(study)), quantile, studies);
    }
}

template <class Measure>
MAOutcomeStudies ReadBy(MultiPassRecordIter& records, const MAModelSettings& settings, double alpha)
{
    using Study = typename Measure::Study;
    MAOutcomeStudies result = {{}, {MAConst::ZERO_ADJUST_NONE, settings.GetZeroCountDelta()}};
    std::vector<Study> raw = ReadRaw<Study>(records, settings, result.reading);
    if (result.reading.status.IsError())
        return result;
    const double quantile = TwoSidedNormalQuantile(alpha);
    if constexpr (requires(const Study& study) { study.HasZeroCell(); }) {
        if (CorrectsZeros(settings.GetOutcomeMeasure()))
            result.correction.type = settings.GetBinZeroAdjType();
        result.correction = result.correction.ResolvedFor(raw);
        AppendCorrectedEffects<Measure>(raw, result.correction, quantile, result.reading.studies);
    } else {
        AppendEffects<Measure>(raw, quantile, result.reading.studies);
    }
    if constexpr (std::is_same_v<Study, MAGroupRates>)
        result.reading.studies.rates = std::move(raw);
    return result;
}

} // namespace

bool NamesOutcome(const MAModelSettings& settings)
{
    const MAConst::OUTCOMEMEASURE measure = settings.GetOutcomeMeasure();
    if (!IsMeasure(measure))
        return false;
    switch (allOutcomeMeasures[measure].data) {
    case MAOutcomeData::Proportion:
        return CountsOf(settings).AreNamed();
    case MAOutcomeData::Rate:
        return AreGiven({settings.GetEventsIndex(), settings.GetTimeIndex()});
    case MAOutcomeData::Correlation:
        return AreGiven({settings.GetCorrelationIndex(), settings.GetSizeIndex()});
    case MAOutcomeData::Mean:
        return AreGiven({settings.GetSizeIndex(), settings.GetMeanIndex(), settings.GetStdDevIndex()});
    case MAOutcomeData::Rates:
        return AreGiven({settings.GetTreatmentSuccessVarIndex(), settings.GetTreatmentTimeIndex(),
                         settings.GetControlSuccessVarIndex(), settings.GetControlTimeIndex()});
    }
    return false;
}

MAOutcomeStudies ReadOutcomes(MultiPassRecordIter& records, const MAModelSettings& settings, double alpha)
{
    MAOutcomeStudies result;
    WithOutcomeMeasure(settings.GetOutcomeMeasure(),
                       [&](auto measure) { result = ReadBy<decltype(measure)>(records, settings, alpha); });
    return result;
}

} // namespace MA_NAMESPACE
