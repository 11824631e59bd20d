#include "meta_analysis/analysis/studies/MATableStudies.h"

#include "meta_analysis/analysis/studies/MACountVariables.h"
#include "meta_analysis/analysis/studies/MADoubtfulCounts.h"
#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/effectsize/MAStudyEstimate.h"
#include "meta_analysis/effectsize/MATableEffect.h"
#include "meta_analysis/effectsize/MATableRule.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <utility>

namespace MA_NAMESPACE {

namespace {

bool HasMoreEventsThanPersons(const MATable& table, const MACountVariables& variables)
{
    return (variables.treatment.UsesSize() && table.b < 0) || (variables.control.UsesSize() && table.d < 0);
}

/// Why a table is no study.
MAConst::EXCLUSION ReasonOf(MATableVerdict verdict, const MATable& table, const MACountVariables& variables)
{
    if (verdict == MATableVerdict::Invalid && HasMoreEventsThanPersons(table, variables))
        return MAConst::EXCLUSION_EVENTS_ABOVE_SIZE;
    return ReasonOf(verdict, table);
}

void Classify(const MATable& table, int recordNumber, const MATableRule& rule,
              const MACountVariables& variables, MAReading& reading)
{
    const MATableVerdict verdict = rule.Judge(table);
    if (verdict != MATableVerdict::Missing && rule.WarnsOf(table) && reading.warnings.empty())
        reading.warnings.push_back(MAStatusCode::ZERO_CELLS_IN_BOTH_ARMS);
    if (verdict != MATableVerdict::Study) {
        reading.counts.Exclude(recordNumber, ReasonOf(verdict, table, variables));
        return;
    }
    reading.studies.recordNumber.push_back(recordNumber);
    reading.studies.sampleSize.push_back(table.a + table.b + table.c + table.d);
    reading.studies.tables.push_back(table);
    WarnOfCounts(table, recordNumber, reading.counts);
}

void ReserveEffects(bool hasRatios, bool hasGroups, MAStudies& studies)
{
    const std::size_t count = studies.tables.size();
    studies.effectSize.reserve(count);
    studies.variance.reserve(count);
    studies.tests.reserve(count);
    studies.ratios.reserve(hasRatios ? count : 0);
    studies.groupOutcomes.reserve(hasGroups ? count : 0);
}

template <class Measure>
void AppendEffect(const MATable& corrected, double quantile, MAStudies& studies)
{
    const MATableEffect study = EffectBy<Measure>(corrected);
    const MAEstimate estimate = EstimateOfStudy(study.effect, study.variance, quantile);
    studies.effectSize.push_back(estimate.estimate);
    studies.variance.push_back(estimate.variance);
    studies.tests.push_back(TestOf(estimate));
    if constexpr (Measure::onLogScale)
        studies.ratios.push_back(
            StudyRatioOf(StudyRatio(estimate, Measure::NaturalEffect(corrected, study.effect))));
    if constexpr (Measure::hasGroups)
        studies.groupOutcomes.push_back({study.groups.control, study.groups.treatment});
}

} // namespace

bool NamesTables(const MAModelSettings& settings)
{
    const MACountVariables variables = CountVariablesOf(settings);
    return variables.treatment.AreNamed() && variables.control.AreNamed();
}

MAReading ReadTables(MultiPassRecordIter& records, const MAModelSettings& settings)
{
    const MACountVariables variables = CountVariablesOf(settings);
    const MATableRule rule(settings.GetBinZeroAdjType(), settings.GetDropBinZero());
    MAReading reading;
    reading.studies.recordNumber.reserve(MAStudies::expectedCount);
    reading.studies.sampleSize.reserve(MAStudies::expectedCount);
    reading.studies.tables.reserve(MAStudies::expectedCount);
    reading.status = ReadPass(records, reading.counts.records, [&](const Record& record, int recordNumber) {
        Classify(variables.Read(record), recordNumber, rule, variables, reading);
    });
    return reading;
}

MATableStudies WithTableEffects(MAStudies studies, MAConst::BINESTYPE measure,
                                const MAZeroCorrection& correction, double alpha)
{
    const MAZeroCorrection resolved = correction.ResolvedFor(studies.tables);
    const double quantile = TwoSidedNormalQuantile(alpha);
    WithMeasure(measure, [&](auto type) {
        using Measure = decltype(type);
        ReserveEffects(Measure::onLogScale, Measure::hasGroups, studies);
        for (const MATable& table : studies.tables)
            AppendEffect<Measure>(resolved.Corrected(table), quantile, studies);
    });
    return {std::move(studies), resolved};
}

} // namespace MA_NAMESPACE
