#pragma once

#include "meta_analysis/settings/MAConst.h"

namespace MA_NAMESPACE {

/// A measure of 2x2 tables.
struct MAMeasure
{
    MAConst::BINESTYPE type;
    bool onLogScale;     ///< analysed on the log scale, as ratios are
    bool comparesGroups; ///< compares one value of each group, which a L'Abbe plot shows
};

/// Each measure stands at the position that is its number, which the assertion below checks.
inline constexpr MAMeasure allMeasures[] = {
    {MAConst::BIN_ODDS_RATIO, true, true},
    {MAConst::BIN_PETO_ODDS_RATIO, true, false},
    {MAConst::BIN_RISK_RATIO, true, true},
    {MAConst::BIN_RISK_DIFFERENCE, false, true},
};
inline constexpr int measureCount = sizeof allMeasures / sizeof *allMeasures;

/// Whether the number is one of the enumeration. The compiler warns of an enumerator that is missing here.
constexpr bool IsMeasure(MAConst::BINESTYPE type)
{
    switch (type) {
    case MAConst::BIN_ODDS_RATIO:
    case MAConst::BIN_PETO_ODDS_RATIO:
    case MAConst::BIN_RISK_RATIO:
    case MAConst::BIN_RISK_DIFFERENCE:
        return true;
    }
    return false;
}

constexpr bool EachMeasureHasItsRow()
{
    for (int i = 0; i < measureCount; ++i)
        if (allMeasures[i].type != i || !IsMeasure(allMeasures[i].type))
            return false;
    return !IsMeasure(static_cast<MAConst::BINESTYPE>(measureCount));
}
static_assert(EachMeasureHasItsRow());

/// A number outside the enumeration counts as a ratio.
constexpr bool IsOnLogScale(MAConst::BINESTYPE type)
{
    return !IsMeasure(type) || allMeasures[type].onLogScale;
}

/// Whether the measure compares one value of each group: its odds, or its risk.
constexpr bool ComparesGroups(MAConst::BINESTYPE type)
{
    return IsMeasure(type) && allMeasures[type].comparesGroups;
}

/// Whether an analysis of binary outcomes pools the counts of the tables (Mantel-Haenszel or Peto) instead of
/// the effect sizes of the studies: a fixed-effect model of raw tables with the weights of these methods.
constexpr bool PoolsCounts(MAConst::MODELTYPE model, MAConst::WEIGHTYPE weights, MAConst::INPUTESTYPE input)
{
    return model == MAConst::MODEL_FIXED && weights == MAConst::WEIGHT_BINARY_FIXED &&
           input == MAConst::INPUT_RAW;
}

} // namespace MA_NAMESPACE
