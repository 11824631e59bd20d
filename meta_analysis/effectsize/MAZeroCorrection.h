#pragma once

#include "meta_analysis/effectsize/MATable.h"
#include "meta_analysis/settings/MAConst.h"

namespace MA_NAMESPACE {

/// The zero-cell correction of 2x2 tables: which of them receive the constant in all four cells.
struct MAZeroCorrection
{
    /// `ZERO_ADJUST_ALL_IF_ANY` depends on the other tables, and corrects nothing here: `MABinaryEffectSize`
    /// replaces it by `ZERO_ADJUST_ALL` when a table has a zero cell.
    MAConst::ZEROADJTYPE type;
    double delta;

    double AddedTo(const MATable& table) const
    {
        const bool isCorrected =
            type == MAConst::ZERO_ADJUST_ALL || (type == MAConst::ZERO_ADJUST_EACH && table.HasZeroCell());
        return isCorrected ? delta : 0.0;
    }

    MATable Corrected(const MATable& table) const
    {
        const double added = AddedTo(table);
        return {table.a + added, table.b + added, table.c + added, table.d + added};
    }
};

} // namespace MA_NAMESPACE
