#pragma once

#include "meta_analysis/effectsize/MATable.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/settings/MAConst.h"

namespace MA_NAMESPACE {

/// What a record of a 2x2 table is.
enum class MATableVerdict
{
    Study,
    Missing, ///< a count is missing
    Invalid, ///< a count is negative, nobody is counted, or no effect size is left without a correction
    Dropped  ///< the settings drop tables with events, or non-events, in neither group
};

/// Which records of 2x2 tables are studies.
class MATableRule
{
public:
    MATableRule(MAConst::ZEROADJTYPE correction, bool dropsDoubleZero)
        : refusesZeroInBothArms_(correction == MAConst::ZERO_ADJUST_NONE), dropsDoubleZero_(dropsDoubleZero)
    {}

    MATableVerdict Judge(const MATable& table) const
    {
        if (HasMissing(table))
            return MATableVerdict::Missing;
        if (IsZeroInBothArms(table) || table.HasNegative() || table.Size() == 0)
            return MATableVerdict::Invalid;
        return Drops(table) ? MATableVerdict::Dropped : MATableVerdict::Study;
    }

    /// Whether the table, whose counts are there, has warning `ZERO_CELLS_IN_BOTH_ARMS`.
    bool WarnsOf(const MATable& table) const { return IsZeroInBothArms(table) && !dropsDoubleZero_; }

private:
    static bool HasMissing(const MATable& table)
    {
        return KXMV::IsMissing(table.a) || KXMV::IsMissing(table.b) || KXMV::IsMissing(table.c) ||
               KXMV::IsMissing(table.d);
    }
    /// Without a correction, a zero cell in both groups leaves no effect size.
    bool IsZeroInBothArms(const MATable& table) const
    {
        return refusesZeroInBothArms_ && table.a * table.b + table.c * table.d == 0;
    }
    /// Events, or non-events, in neither group.
    bool Drops(const MATable& table) const
    {
        return dropsDoubleZero_ && (table.a + table.c == 0 || table.b + table.d == 0);
    }

    bool refusesZeroInBothArms_;
    bool dropsDoubleZero_;
};

/// Why a table that is no study is none, when its counts do not say that a group has more events than
/// persons.
inline MAConst::EXCLUSION ReasonOf(MATableVerdict verdict, const MATable& table)
{
    if (verdict == MATableVerdict::Study)
        return MAConst::EXCLUSION_NONE;
    if (verdict == MATableVerdict::Missing)
        return MAConst::EXCLUSION_MISSING_VALUE;
    if (verdict == MATableVerdict::Dropped)
        return MAConst::EXCLUSION_DROPPED;
    if (table.HasNegative())
        return MAConst::EXCLUSION_NEGATIVE_COUNT;
    return table.Size() == 0 ? MAConst::EXCLUSION_NO_PERSONS : MAConst::EXCLUSION_ZERO_CELLS;
}

} // namespace MA_NAMESPACE
