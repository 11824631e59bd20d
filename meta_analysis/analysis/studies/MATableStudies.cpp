#include "meta_analysis/analysis/studies/MATableStudies.h"

#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/effectsize/MABinaryEffectSize.h"
#include "meta_analysis/settings/Guarded.h"
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

MATableStudies WithTableEffects(MAStudies studies, const MATableMeasure& measure, double alpha)
{
    return {KXStatus(), std::move(studies), measure};
}

} // namespace MA_NAMESPACE
