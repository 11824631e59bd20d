#include "meta_analysis/analysis/studies/MATableStudies.h"

#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/effectsize/MABinaryEffectSize.h"
#include "meta_analysis/settings/Guarded.h"
#include "meta_analysis/settings/MAMeasures.h"
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

/// The columns of tables, which receive the zero-cell correction.
struct TableColumns
{
    explicit TableColumns(const std::vector<MATable>& tables)
    {
        for (const MATable& table : tables) {
            treatmentEvents.push_back(table.a);
            treatmentNonEvents.push_back(table.b);
            controlEvents.push_back(table.c);
            controlNonEvents.push_back(table.d);
        }
    }

    std::vector<double> treatmentEvents;
    std::vector<double> treatmentNonEvents;
    std::vector<double> controlEvents;
    std::vector<double> controlNonEvents;
};

void TakeGroups(const std::vector<double>& control, const std::vector<double>& treatment, MAStudies& studies)
{
    RequireLength(control.size(), treatment);
    for (std::size_t i = 0; i < control.size(); ++i)
        studies.groupOutcomes.push_back({control[i], treatment[i]});
}

void TakeTests(const std::vector<double>& stdErrors, const std::vector<double>& zValues,
               const std::vector<double>& pValues, const std::vector<double>& lower,
               const std::vector<double>& upper, MAStudies& studies)
{
    const std::size_t count = studies.effectSize.size();
    RequireLength(count, studies.variance, stdErrors, zValues, pValues, lower, upper);
    for (std::size_t i = 0; i < count; ++i)
        studies.tests.push_back({stdErrors[i], zValues[i], pValues[i], lower[i], upper[i]});
}

void TakeDifferences(const MABinaryEffectSize& effects, MAStudies& studies)
{
    TakeGroups(effects.GetControlGRatio(), effects.GetTreatmentGRatio(), studies);
    studies.effectSize = effects.GetEffectSizeVal();
    studies.variance = effects.GetEffectSizeVariance();
    TakeTests(effects.GetEffectSizeStdError(), effects.GetEffectSizeZVal(), effects.GetEffectSizeSig(),
              effects.GetEffectSizeCILower(), effects.GetEffectSizeCIUpper(), studies);
}

void TakeRatios(const MABinaryEffectSize& effects, MAStudies& studies)
{
    TakeGroups(effects.GetLogControlGRatio(), effects.GetLogTreatmentGRatio(), studies);
    studies.effectSize = effects.GetLogEffectSizeVal();
    studies.variance = effects.GetLogEffectSizeVariance();
    TakeTests(effects.GetLogEffectSizeStdError(), effects.GetLogEffectSizeZVal(),
              effects.GetLogEffectSizeSig(), effects.GetLogEffectSizeCILower(),
              effects.GetLogEffectSizeCIUpper(), studies);
    const std::vector<double> value = effects.GetEffectSizeVal();
    const std::vector<double> variance = effects.GetEffectSizeVariance();
    const std::vector<double> stdError = effects.GetEffectSizeStdError();
    const std::vector<double> lower = effects.GetEffectSizeCILower();
    const std::vector<double> upper = effects.GetEffectSizeCIUpper();
    RequireLength(studies.Count(), value, variance, stdError, lower, upper);
    for (std::size_t i = 0; i < studies.Count(); ++i)
        studies.ratios.push_back({value[i], variance[i], stdError[i], lower[i], upper[i]});
}

} // namespace

bool NamesTables(const MAModelSettings& settings)
{
    const std::array<int, 4> indices = CountIndices(settings);
    return std::find(indices.begin(), indices.end(), -1) == indices.end();
}

MAReading ReadTables(MultiPassRecordIter& records, const MAModelSettings& settings)
{
    const auto [a, b, c, d] = CountIndices(settings);
    const TableRule rule(settings);
    MAReading reading;
    reading.status = ReadPass(records, reading.counts.records, [&](const Record& record, int recordNumber) {
        const MATable table = {ReadStudyValue(record, a), ReadStudyValue(record, b),
                               ReadStudyValue(record, c), ReadStudyValue(record, d)};
        Classify(table, recordNumber, rule, reading);
    });
    return reading;
}

MATableStudies WithTableEffects(MAStudies studies, MAConst::BINESTYPE measure,
                                const MAZeroCorrection& correction, double alpha)
{
    TableColumns columns(studies.tables);
    MABinaryEffectSize effectSizes;
    effectSizes.SetTreatmentGSuccessCounts(&columns.treatmentEvents);
    effectSizes.SetTreatmentGFailureCounts(&columns.treatmentNonEvents);
    effectSizes.SetControlGSuccessCounts(&columns.controlEvents);
    effectSizes.SetControlGFailureCounts(&columns.controlNonEvents);
    effectSizes.SetZeroCountDelta(correction.delta);
    effectSizes.SetZeroAdjType(correction.type);
    effectSizes.SetEstimationMethod(measure);
    effectSizes.SetSignLevel(alpha);
    const KXStatus status = effectSizes.ComputeEffectSizeStatistics();
    if (!status.IsError()) {
        if (IsOnLogScale(measure))
            TakeRatios(effectSizes, studies);
        else
            TakeDifferences(effectSizes, studies);
    }
    return {status, std::move(studies), {effectSizes.GetUpdatedZeroAdjType(), correction.delta}};
}

} // namespace MA_NAMESPACE
