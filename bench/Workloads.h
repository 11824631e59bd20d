#pragma once

#include "BareLoops.h"
#include "SimulatedStudies.h"

#include "meta_analysis/bulk/MABulkPooling.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/settings/MAConst.h"
#include "meta_analysis/settings/MAModelSettings.h"
#include "meta_analysis/settings/MARegSettings.h"

#include <cstddef>
#include <vector>

// What is measured, by the clock and in instructions: the library's work as a host has it done, each with its
// yardstick. `Run` constructs the library's object, computes, and returns figures that `Bare` returns too, or
// figures that are not numbers when the library reports an error. `count` is the number of studies.

/// Fits the random-effects model of the library.
bare::Fit FitRandomEffects(const SimulatedStudies& studies, MAConst::TAU2ESTIMATOR estimator);

class RemlFit
{
public:
    explicit RemlFit(std::size_t count) : studies_(SimulateStudies(count)) {}
    bare::Fit Run() { return FitRandomEffects(studies_, MAConst::TAU2_REML); }
    bare::Fit Bare() const;

private:
    SimulatedStudies studies_;
};

/// tau² of REML by the search for the global maximum. Its yardstick is scoring, as the library has it: within
/// the default tolerance it ends at the same tau² on these data.
class RemlSearch
{
public:
    explicit RemlSearch(std::size_t count) : studies_(SimulateStudies(count)) {}
    double Run() { return Estimate(MAConst::TAU2_SEARCH_GLOBAL); }
    double Bare() { return Estimate(MAConst::TAU2_SEARCH_SCORING); }
    /// Evaluations of the likelihood's slope by the last search.
    int Evaluations() const { return evaluations_; }

private:
    double Estimate(MAConst::TAU2SEARCH search);

    SimulatedStudies studies_;
    int evaluations_ = 0;
};

/// The whole run on 2x2 tables, default settings. 13 are those of Colditz et al. (1994), JAMA 271, 698-702:
/// BCG vaccination against tuberculosis; more repeat them.
class TableRun
{
public:
    explicit TableRun(std::size_t count);
    bare::Fit Run();
    bare::Fit Bare() const { return bare::AnalyseTables(tables_).fit; }

private:
    std::vector<bare::Table> tables_;
    MA_NAMESPACE::MAModelSettings settings_;
    KXVarList variables_;
    VectorRecordIter records_;
};

/// The whole run on ready-made effect sizes, default settings.
class EffectsRun
{
public:
    explicit EffectsRun(std::size_t count);
    bare::Fit Run();
    bare::Fit Bare() const;

private:
    SimulatedStudies studies_;
    MA_NAMESPACE::MAModelSettings settings_;
    KXVarList variables_;
    VectorRecordIter records_;
};

/// The whole run of a cumulative analysis, fixed effect. The figures are those of the last model.
class CumulativeRun
{
public:
    explicit CumulativeRun(std::size_t count);
    bare::Fit Run();
    bare::Fit Bare() const;

private:
    SimulatedStudies studies_;
    std::vector<double> order_;
    MA_NAMESPACE::MAModelSettings settings_;
    VectorRecordIter records_;
};

/// Mixed-effects regression on an intercept and two covariates, with the reading of the records.
class RegressionRun
{
public:
    explicit RegressionRun(std::size_t count);
    bare::Fit Run();
    bare::Fit Bare() const;

private:
    std::vector<bare::DesignRow> rows_;
    std::vector<double> variances_;
    MA_NAMESPACE::MARegSettings settings_;
    VectorRecordIter records_;
};

/// One call for a thousand sets of `count` studies each, on one thread. The figures are sums over the sets.
class ManySets
{
public:
    static constexpr std::size_t setCount = 1000;

    explicit ManySets(std::size_t count);

protected:
    /// Every column, or the estimate with its standard error, tau² and the status.
    const MA_NAMESPACE::MABulkResults& AllColumns() const { return all_; }
    MA_NAMESPACE::MABulkResults PointColumns() const;
    double SumOf(const double* column) const;
    bool Pool(const MA_NAMESPACE::MABulkModel& model, const MA_NAMESPACE::MABulkResults& results) const;

    std::size_t count_;
    SimulatedStudies studies_;

private:
    std::vector<std::size_t> offsets_;
    std::vector<double> numbers_;
    std::vector<int> counts_;
    MA_NAMESPACE::MABulkResults all_;
};

/// Estimates alone, by the fixed-effect model.
class ManySetsFixed : public ManySets
{
public:
    using ManySets::ManySets;
    bare::Fit Run();
    bare::Fit Bare() const { return bare::PoolSetsFixed(studies_.effectSizes, studies_.variances, count_); }
};

/// ... and by that of DerSimonian and Laird.
class ManySetsMoment : public ManySets
{
public:
    using ManySets::ManySets;
    bare::Fit Run();
    bare::Fit Bare() const { return bare::PoolSetsMoment(studies_.effectSizes, studies_.variances, count_); }
};

/// All columns of REML by the global search, with the adjustment of Knapp and Hartung and the Q-profile
/// interval of tau². Its yardstick is scoring to tau², the estimate and Q alone; they agree on Q to rounding.
class ManySetsReml : public ManySets
{
public:
    using ManySets::ManySets;
    bare::Fit Run();
    bare::Fit Bare() const
    {
        return {0.0, 0.0, bare::PoolSetsReml(studies_.effectSizes, studies_.variances, count_).q};
    }
};

/// Within 1e-9: both sides sum the same terms, in orders of their own, and rounding differs far less.
bool Agree(const bare::Fit& left, const bare::Fit& right);

template <class Work>
bool AgreesWithBareLoop(Work& work)
{
    return Agree(work.Run(), work.Bare());
}
