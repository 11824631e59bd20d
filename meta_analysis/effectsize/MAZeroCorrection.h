#pragma once

#include "meta_analysis/settings/MAConst.h"

#include <algorithm>

namespace MA_NAMESPACE {

/// The zero-cell correction of 2x2 tables, and of other counts that can be 0: which of them receive the
/// constant, a table in all four cells.
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
            std::any_of(tables.begin(), tables.end(), [](const auto& t) { return t.HasZeroCell(); });
        return {appliesToAll ? MAConst::ZERO_ADJUST_ALL : type, delta};
    }

    template <class Table>
    double AddedTo(const Table& table) const
    {
        const bool isCorrected =
            type == MAConst::ZERO_ADJUST_ALL || (type == MAConst::ZERO_ADJUST_EACH && table.HasZeroCell());
        return isCorrected ? delta : 0.0;
    }

    template <class Table>
    Table Corrected(const Table& table) const
    {
        return table.Plus(AddedTo(table));
    }
};

} // namespace MA_NAMESPACE
