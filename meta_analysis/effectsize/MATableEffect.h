#pragma once

#include "meta_analysis/effectsize/MATable.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/settings/MAConst.h"

#include <cmath>

namespace MA_NAMESPACE {

// The measures of 2x2 tables. Each has the effect of a table and its variance on the scale of the analysis,
// the log scale for ratios and the natural scale for the risk difference, and the ratio of each group, odds
// or risk, on that scale. What a zero cell leaves undefined is missing, or 0 for the risk difference.

struct MAOddsRatio
{
    static constexpr bool onLogScale = true;
    static double Effect(const MATable& table)
    {
        return table.HasZeroCell() ? KXMV::Missing() : LogOdds(table.a, table.b) - LogOdds(table.c, table.d);
    }
    static double Variance(const MATable& table) { return table.LogOddsRatioVariance(); }

    static double LogOdds(double events, double nonEvents) { return std::log(events) - std::log(nonEvents); }
};

struct MAPetoOddsRatio
{
    static constexpr bool onLogScale = true;
    /// Events, or non-events, in neither group leave no variance, nor does a single person.
    static double Effect(const MATable& table)
    {
        const double variance = table.HypergeometricVariance();
        return table.Size() > 1 && variance != 0 ? table.ExcessEvents() / variance : KXMV::Missing();
    }
    static double Variance(const MATable& table) { return 1.0 / table.HypergeometricVariance(); }
};

struct MARiskRatio
{
    static constexpr bool onLogScale = true;
    static double Effect(const MATable& table)
    {
        if (!HasRisk(table.a, table.TreatmentSize()) || !HasRisk(table.c, table.ControlSize()))
            return KXMV::Missing();
        return LogRisk(table.a, table.TreatmentSize()) - LogRisk(table.c, table.ControlSize());
    }
    static double Variance(const MATable& table) { return table.LogRiskRatioVariance(); }

    static bool HasRisk(double events, double size) { return size != 0 && events != 0; }
    static double LogRisk(double events, double size) { return std::log(events) - std::log(size); }
};

struct MARiskDifference
{
    static constexpr bool onLogScale = false;
    static double Effect(const MATable& table)
    {
        const double nt = table.TreatmentSize();
        const double nc = table.ControlSize();
        return nt != 0 && nc != 0 ? table.a / nt - table.c / nc : 0.0;
    }
    static double Variance(const MATable& table) { return table.RiskDifferenceVariance(); }
};

} // namespace MA_NAMESPACE
