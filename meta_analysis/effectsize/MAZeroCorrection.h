#pragma once

#include "meta_analysis/effectsize/MATable.h"
#include "meta_analysis/settings/MAConst.h"

#include <algorithm>

namespace MA_NAMESPACE {

/// The zero-cell correction of 2x2 tables: which of them receive the constant in all four cells.
struct MAZeroCorrection
{
    /// `ZERO_ADJUST_ALL_IF_ANY` depends on the other tables: `ResolvedFor` replaces it. Unresolved it
    /// corrects nothing.
    MAConst::ZEROADJTYPE type = MAConst::ZERO_ADJUST_EACH;
    double delta = 0.5;

    /// The correction for these tables: `ZERO_ADJUST_ALL_IF_ANY` becomes `ZERO_ADJUST_ALL` when one of them
    /// has a zero cell.
    template <class Tables>
    MAZeroCorrection ResolvedFor(const Tables& tables) const
    {
        const bool appliesToAll =
            type == MAConst::ZERO_ADJUST_ALL_IF_ANY &&
            std::any_of(tables.begin(), tables.end(), [](const MATable& t) { return t.HasZeroCell(); });
        return {appliesToAll ? MAConst::ZERO_ADJUST_ALL : type, delta};
    }

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
