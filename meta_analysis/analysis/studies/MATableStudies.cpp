#include "meta_analysis/analysis/studies/MATableStudies.h"

#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/effectsize/MAStudyEstimate.h"
#include "meta_analysis/effectsize/MATableEffect.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <array>
#include <utility>

namespace MA_NAMESPACE {

namespace {

std::array<int, 4> CountIndices(const MAModelSettings& settings)
{
    return {settings.GetTreatmentSuccessVarIndex(), settings.GetTreatmentFailureVarIndex(),
            settings.GetControlSuccessVarIndex(), settings.GetControlFailureVarIndex()};
}

bool HasMissing(const MATable& table)
{
    return KXMV::IsMissing(table.a) || KXMV::IsMissing(table.b) || KXMV::IsMissing(table.c) ||
           KXMV::IsMissing(table.d);
}

/// Which records are studies.
class TableRule
{
public:
    explicit TableRule(const MAModelSettings& settings)
        : dropsDoubleZero_(settings.GetDropBinZero()),
          refusesZeroInBothArms_(settings.GetBinZeroAdjType() == MAConst::ZERO_ADJUST_NONE)
    {}

    /// Without a correction, a zero cell in both groups leaves no effect size.
    bool IsZeroInBothArms(const MATable& table) const
    {
        return refusesZeroInBothArms_ && table.a * table.b + table.c * table.d == 0;
    }
    bool WarnsOf(const MATable& table) const { return IsZeroInBothArms(table) && !dropsDoubleZero_; }
    bool IsInvalid(const MATable& table) const
    {
        const bool isNegative = table.a < 0 || table.b < 0 || table.c < 0 || table.d < 0;
        return table.a + table.b + table.c + table.d == 0 || IsZeroInBothArms(table) || isNegative;
    }
    /// Events, or non-events, in neither group.
    bool Drops(const MATable& table) const
    {
        return dropsDoubleZero_ && (table.a + table.c == 0 || table.b + table.d == 0);
    }

private:
    bool dropsDoubleZero_;
    bool refusesZeroInBothArms_;
};

void Classify(const MATable& table, int recordNumber, const TableRule& rule, MAReading& reading)
{
    if (HasMissing(table)) {
        ++reading.counts.missing;
        return;
    }
    if (rule.WarnsOf(table) && reading.warnings.empty())
        reading.warnings.push_back(MAStatusCode::ZERO_CELLS_IN_BOTH_ARMS);
    if (rule.IsInvalid(table)) {
        ++reading.counts.invalid;
    } else if (rule.Drops(table)) {
        ++reading.counts.dropped;
    } else {
        reading.studies.recordNumber.push_back(recordNumber);
        reading.studies.sampleSize.push_back(table.a + table.b + table.c + table.d);
        reading.studies.tables.push_back(table);
    }
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
    const std::array<int, 4> indices = CountIndices(settings);
    return std::find(indices.begin(), indices.end(), -1) == indices.end();
}

MAReading ReadTables(MultiPassRecordIter& records, const MAModelSettings& settings)
{
    const std::array<int, 4> indices = CountIndices(settings);
    const TableRule rule(settings);
    MAReading reading;
    reading.studies.recordNumber.reserve(MAStudies::expectedCount);
    reading.studies.sampleSize.reserve(MAStudies::expectedCount);
    reading.studies.tables.reserve(MAStudies::expectedCount);
    reading.status = ReadPass(records, reading.counts.records, [&](const Record& record, int recordNumber) {
        const MATable table = {ReadStudyValue(record, indices[0]), ReadStudyValue(record, indices[1]),
                               ReadStudyValue(record, indices[2]), ReadStudyValue(record, indices[3])};
        Classify(table, recordNumber, rule, reading);
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
