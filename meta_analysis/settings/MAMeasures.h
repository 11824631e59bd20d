#pragma once

#include "meta_analysis/settings/MAConst.h"

namespace MA_NAMESPACE {

/// A measure of 2x2 tables.
struct MAMeasure
{
    MAConst::BINESTYPE type;
    const char* name;        ///< as reports show it
    bool onLogScale;         ///< whether it is analysed on the log scale
    const char* poolingName; ///< the method that pools tables of it without inverse variances
    bool hasGroupValues;     ///< whether it compares a value of each group, as a L'Abbe plot shows them
};

inline constexpr MAMeasure measures[] = {
    {MAConst::BIN_ODDS_RATIO, "Odds ratio", true, "Mantel-Haenszel", true},
    {MAConst::BIN_PETO_ODDS_RATIO, "Peto odds ratio", true, "Peto", false},
    {MAConst::BIN_RISK_RATIO, "Risk ratio", true, "Mantel-Haenszel", true},
    {MAConst::BIN_RISK_DIFFERENCE, "Risk difference", false, "Mantel-Haenszel", true},
};

/// The row of a measure; null for a value outside the enumeration.
constexpr const MAMeasure* FindMeasure(MAConst::BINESTYPE type)
{
    for (const MAMeasure& measure : measures) {
        if (measure.type == type)
            return &measure;
    }
    return nullptr;
}

constexpr bool IsMeasure(MAConst::BINESTYPE type)
{
    return FindMeasure(type) != nullptr;
}

/// A value outside the enumeration counts as a ratio.
constexpr bool IsOnLogScale(MAConst::BINESTYPE type)
{
    const MAMeasure* const measure = FindMeasure(type);
    return measure == nullptr || measure->onLogScale;
}

} // namespace MA_NAMESPACE
