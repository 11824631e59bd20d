#pragma once

#include "meta_analysis/settings/MAConst.h"

namespace MA_NAMESPACE {

/// A measure of 2x2 tables.
struct MAMeasure
{
    MAConst::BINESTYPE type;
    bool onLogScale;     ///< analysed on the log scale, as ratios are
    bool hasGroupValues; ///< compares one value of each group, which a L'Abbe plot shows
};

/// Each measure stands at the position that is its number.
inline constexpr MAMeasure measures[] = {
    {MAConst::BIN_ODDS_RATIO, true, true},
    {MAConst::BIN_PETO_ODDS_RATIO, true, false},
    {MAConst::BIN_RISK_RATIO, true, true},
    {MAConst::BIN_RISK_DIFFERENCE, false, true},
};
inline constexpr int measureCount = sizeof measures / sizeof *measures;

constexpr bool IsMeasure(MAConst::BINESTYPE type)
{
    return type >= 0 && type < measureCount;
}

/// A number outside the enumeration counts as a ratio.
constexpr bool IsOnLogScale(MAConst::BINESTYPE type)
{
    return !IsMeasure(type) || measures[type].onLogScale;
}

constexpr bool HasGroupValues(MAConst::BINESTYPE type)
{
    return IsMeasure(type) && measures[type].hasGroupValues;
}

} // namespace MA_NAMESPACE
