#pragma once

#include "meta_analysis/effectsize/MARatio.h"
#include "meta_analysis/effectsize/MATable.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/settings/MAMeasures.h"

#include <cmath>

namespace MA_NAMESPACE {

/// The odds or risks that a measure compares; missing where a group has none.
struct MAGroupValues
{
    double treatment = KXMV::Missing();
    double control = KXMV::Missing();
};

/// The effect of one table, its variance, and what it compares, on the scale of the analysis.
struct MATableEffect
{
    double effect;
    double variance;
    MAGroupValues groups;
};

// The measures of 2x2 tables on the scale of the analysis: the log scale for ratios, the natural scale for
// the risk difference. Each knows which tables have an effect (`undefined` stands for any other), the effect
// and its variance where there is one, and the effect and the group values on the natural scale.

struct MAOddsRatio
{
    static constexpr MAConst::BINESTYPE type = MAConst::BIN_ODDS_RATIO;
    static constexpr bool onLogScale = IsOnLogScale(type);
    static constexpr bool hasGroups = ComparesGroups(type);
    static constexpr double undefined = KXMV::Missing();

    static bool HasEffect(const MATable& table) { return !table.HasZeroCell(); }
    static MAGroupValues Groups(const MATable& table)
    {
        if (table.HasZeroCell())
            return {};
        return {std::log(table.a) - std::log(table.b), std::log(table.c) - std::log(table.d)};
    }
    static double Effect(const MATable& /*table*/, const MAGroupValues& groups)
    {
        return groups.treatment - groups.control;
    }
    static double Variance(const MATable& table) { return table.LogOddsRatioVariance(); }

    /// The ratio needs bc alone to be non-zero, and may be 0; its log needs all four cells.
    static bool HasRatio(const MATable& table) { return table.b != 0 && table.c != 0; }
    static double NaturalEffect(const MATable& table, double /*effect*/)
    {
        return HasRatio(table) ? (table.d / table.c) * (table.a / table.b) : undefined;
    }
    static MAGroupValues NaturalGroups(const MATable& table, const MAGroupValues& /*groups*/)
    {
        return HasRatio(table) ? MAGroupValues{table.a / table.b, table.c / table.d} : MAGroupValues();
    }
};

struct MAPetoOddsRatio
{
    static constexpr MAConst::BINESTYPE type = MAConst::BIN_PETO_ODDS_RATIO;
    static constexpr bool onLogScale = IsOnLogScale(type);
    static constexpr bool hasGroups = ComparesGroups(type);
    static constexpr double undefined = KXMV::Missing();

    /// False without events, or without non-events, in both groups, and with a single person.
    static bool HasEffect(const MATable& table)
    {
        return table.Size() > 1 && table.HypergeometricVariance() != 0;
    }
    static MAGroupValues Groups(const MATable& /*table*/) { return {}; }
    static double Effect(const MATable& table, const MAGroupValues& /*groups*/)
    {
        return table.ExcessEvents() / table.HypergeometricVariance();
    }
    static double Variance(const MATable& table) { return 1.0 / table.HypergeometricVariance(); }

    static double NaturalEffect(const MATable& /*table*/, double effect) { return RatioOf(effect); }
    static MAGroupValues NaturalGroups(const MATable& /*table*/, const MAGroupValues& groups)
    {
        return groups;
    }
};

struct MARiskRatio
{
    static constexpr MAConst::BINESTYPE type = MAConst::BIN_RISK_RATIO;
    static constexpr bool onLogScale = IsOnLogScale(type);
    static constexpr bool hasGroups = ComparesGroups(type);
    static constexpr double undefined = KXMV::Missing();

    static bool HasEffect(const MATable& table)
    {
        return HasRisk(table.a, table.TreatmentSize()) && HasRisk(table.c, table.ControlSize());
    }
    static MAGroupValues Groups(const MATable& table)
    {
        return {LogRisk(table.a, table.TreatmentSize()), LogRisk(table.c, table.ControlSize())};
    }
    static double Effect(const MATable& /*table*/, const MAGroupValues& groups)
    {
        return groups.treatment - groups.control;
    }
    static double Variance(const MATable& table) { return table.LogRiskRatioVariance(); }

    static double NaturalEffect(const MATable& /*table*/, double effect) { return RatioOf(effect); }
    static MAGroupValues NaturalGroups(const MATable& /*table*/, const MAGroupValues& groups)
    {
        return {RatioOf(groups.treatment), RatioOf(groups.control)};
    }

private:
    static bool HasRisk(double events, double size) { return size != 0 && events != 0; }
    static double LogRisk(double events, double size)
    {
        return HasRisk(events, size) ? std::log(events) - std::log(size) : KXMV::Missing();
    }
};

struct MARiskDifference
{
    static constexpr MAConst::BINESTYPE type = MAConst::BIN_RISK_DIFFERENCE;
    static constexpr bool onLogScale = IsOnLogScale(type);
    static constexpr bool hasGroups = ComparesGroups(type);
    static constexpr double undefined = 0.0;

    static bool HasEffect(const MATable& table)
    {
        return table.TreatmentSize() != 0 && table.ControlSize() != 0;
    }
    static MAGroupValues Groups(const MATable& table)
    {
        return {Risk(table.a, table.TreatmentSize()), Risk(table.c, table.ControlSize())};
    }
    static double Effect(const MATable& /*table*/, const MAGroupValues& groups)
    {
        return groups.treatment - groups.control;
    }
    static double Variance(const MATable& table) { return table.RiskDifferenceVariance(); }

    static double NaturalEffect(const MATable& /*table*/, double effect) { return effect; }
    static MAGroupValues NaturalGroups(const MATable& /*table*/, const MAGroupValues& groups)
    {
        return groups;
    }

private:
    static double Risk(double events, double size) { return size != 0 ? events / size : undefined; }
};

template <class Measure>
MATableEffect EffectBy(const MATable& table)
{
    const MAGroupValues groups = Measure::Groups(table);
    if (!Measure::HasEffect(table))
        return {Measure::undefined, Measure::undefined, groups};
    return {Measure::Effect(table, groups), Measure::Variance(table), groups};
}

/// Calls `use` with the measure; does nothing for a value outside the enumeration.
template <class Use>
void WithMeasure(MAConst::BINESTYPE type, Use&& use)
{
    switch (type) {
    case MAConst::BIN_ODDS_RATIO:
        use(MAOddsRatio());
        return;
    case MAConst::BIN_PETO_ODDS_RATIO:
        use(MAPetoOddsRatio());
        return;
    case MAConst::BIN_RISK_RATIO:
        use(MARiskRatio());
        return;
    case MAConst::BIN_RISK_DIFFERENCE:
        use(MARiskDifference());
        return;
    }
}

} // namespace MA_NAMESPACE
