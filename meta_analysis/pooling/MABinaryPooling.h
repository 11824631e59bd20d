#pragma once

#include "meta_analysis/effectsize/MATable.h"
#include "meta_analysis/effectsize/MATableEffect.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/pooling/MAMantelHaenszelSums.h"
#include "meta_analysis/settings/MAConst.h"

#include <cmath>

namespace MA_NAMESPACE {

// The fixed-effect methods for 2x2 tables. Each is a set of running sums, to which tables are added one by
// one, or the sums over others, and from which the pooled estimate and its variance follow at any time, on
// the scale of the test: that of the analysis. Each method also names the measure that it pools, and has the
// weight of a table, and whether a table has information on the pooled effect: without it every term of the
// sums is 0 (or 0 / 0).

/// Mantel and Haenszel (1959), Journal of the National Cancer Institute 22, 719-748; variance of Robins,
/// Breslow and Greenland (1986), Biometrics 42, 311-323.
class MAOddsRatioPooling
{
public:
    using Measure = MAOddsRatio;
    using Table = MATable;
    static double Weight(const MATable& table) { return table.b * table.c / table.Size(); }
    /// False without events, or without non-events, in both groups, and with an empty group.
    static bool IsInformative(const MATable& table)
    {
        return (table.a != 0 && table.d != 0) || (table.b != 0 && table.c != 0);
    }

    void Add(const MATable& table)
    {
        const double n = table.Size();
        const double r = table.a * table.d / n;
        const double s = Weight(table);
        const double p = (table.a + table.d) / n;
        const double q = (table.b + table.c) / n;
        r_ += r;
        s_ += s;
        rp_ += r * p;
        rqsp_ += r * q + s * p;
        sq_ += s * q;
    }
    void Add(const MAOddsRatioPooling& others)
    {
        r_ += others.r_;
        s_ += others.s_;
        rp_ += others.rp_;
        rqsp_ += others.rqsp_;
        sq_ += others.sq_;
    }
    /// As a ratio of sums, so that a table whose own odds ratio is not defined still counts.
    double Estimate() const { return std::log(r_ / s_); }
    double Variance() const
    {
        return rp_ / (2.0 * r_ * r_) + rqsp_ / (2.0 * r_ * s_) + sq_ / (2.0 * s_ * s_);
    }

private:
    double r_ = 0.0;
    double s_ = 0.0;
    double rp_ = 0.0;
    double rqsp_ = 0.0;
    double sq_ = 0.0;
};

/// Mantel-Haenszel risk ratio with the variance of Greenland and Robins (1985), Biometrics 41, 55-68. Their
/// numerator (nt nc (a + c) - a c n) / n² is summed as the equal (a nt d + c nc b) / n², which does not
/// cancel.
class MARiskRatioPooling : public MARatioSums
{
public:
    using MARatioSums::Add;
    using Measure = MARiskRatio;
    using Table = MATable;
    static double Weight(const MATable& table) { return table.TreatmentSize() * table.c / table.Size(); }
    /// False without events in both groups, and with an empty group. True where all persons have events:
    /// both risks are 1.
    static bool IsInformative(const MATable& table)
    {
        return (table.a != 0 && table.ControlSize() != 0) || (table.c != 0 && table.TreatmentSize() != 0);
    }

    void Add(const MATable& table)
    {
        const double nt = table.TreatmentSize();
        const double nc = table.ControlSize();
        const double n = table.Size();
        r_ += table.a * nc / n;
        s_ += Weight(table);
        p_ += (table.a * nt * table.d + table.c * nc * table.b) / (n * n);
    }
};

/// Mantel-Haenszel risk difference with the variance of Greenland and Robins (1985), Biometrics 41, 55-68.
class MARiskDifferencePooling : public MADifferenceSums
{
public:
    using MADifferenceSums::Add;
    using Measure = MARiskDifference;
    using Table = MATable;
    static double Weight(const MATable& table)
    {
        return table.TreatmentSize() * table.ControlSize() / table.Size();
    }
    /// False with an empty group. True for two risks of 0, whose difference is 0.
    static bool IsInformative(const MATable& table)
    {
        return table.TreatmentSize() != 0 && table.ControlSize() != 0;
    }

    void Add(const MATable& table)
    {
        const double nt = table.TreatmentSize();
        const double nc = table.ControlSize();
        const double n = table.Size();
        weightedDifferences_ += table.ExcessEvents();
        weights_ += Weight(table);
        weightedVariances_ +=
            (nt * nt * nt * table.c * table.d + nc * nc * nc * table.a * table.b) / (n * n * nt * nc);
    }
};

/// Peto's one-step odds ratio (Yusuf et al. 1985, Progress in Cardiovascular Diseases 27, 335-371).
class MAPetoPooling
{
public:
    using Measure = MAPetoOddsRatio;
    using Table = MATable;
    /// A single person has no variance.
    static double Weight(const MATable& table)
    {
        return table.Size() > 1.0 ? table.HypergeometricVariance() : KXMV::Missing();
    }
    /// False as for the odds ratio, and with a single person.
    static bool IsInformative(const MATable& table)
    {
        return table.Size() > 1.0 && table.HypergeometricVariance() != 0;
    }

    void Add(const MATable& table)
    {
        excess_ += table.ExcessEvents();
        variance_ += table.HypergeometricVariance();
    }
    void Add(const MAPetoPooling& others)
    {
        excess_ += others.excess_;
        variance_ += others.variance_;
    }
    double Estimate() const { return excess_ / variance_; }
    double Variance() const { return 1.0 / variance_; }

private:
    double excess_ = 0.0;
    double variance_ = 0.0;
};

/// The method that pools a measure.
template <class Measure>
struct MAPoolingOf;

template <>
struct MAPoolingOf<MAOddsRatio>
{
    using Type = MAOddsRatioPooling;
};
template <>
struct MAPoolingOf<MAPetoOddsRatio>
{
    using Type = MAPetoPooling;
};
template <>
struct MAPoolingOf<MARiskRatio>
{
    using Type = MARiskRatioPooling;
};
template <>
struct MAPoolingOf<MARiskDifference>
{
    using Type = MARiskDifferencePooling;
};

/// Calls `use` with empty running sums of the method for the measure; does nothing for a value outside the
/// enumeration.
template <class Use>
void WithBinaryPooling(MAConst::BINESTYPE type, Use&& use)
{
    WithMeasure(type, [&](auto measure) { use(typename MAPoolingOf<decltype(measure)>::Type()); });
}

/// The null value on the scale of the test. On the natural scale 0 is no value for a ratio, nor 1 for a
/// difference: each is taken as the other, "no effect".
template <class Pooling>
double NullOnTestScale(double nullHypothesis)
{
    if constexpr (Pooling::Measure::onLogScale)
        return std::log(nullHypothesis == 0.0 ? 1.0 : nullHypothesis);
    else
        return nullHypothesis == 1.0 ? 0.0 : nullHypothesis;
}

} // namespace MA_NAMESPACE
