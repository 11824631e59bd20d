// Regressions of many sets on one design in one call, against the engine in a loop and against plain loops.

#include "AgainstBareLoop.h"
#include "BareLoops.h"
#include "SimulatedStudies.h"

#include "meta_analysis/bulk/MABulkRegression.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/regression/MAREAlgorithm.h"
#include "meta_analysis/regression/MARegOutputStats.h"
#include "meta_analysis/settings/MARegSettings.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

using namespace MA_NAMESPACE;

namespace {

constexpr std::size_t setCount = 256;
constexpr std::size_t p = bare::predictorCount;

/// Sets over an intercept and two predictors: REML by the search, Knapp and Hartung's adjustment, and the
/// Q-profile interval, with all columns of results.
class RegressedSets
{
public:
    explicit RegressedSets(std::size_t count);

    /// Each returns the sum of residual Q over the sets.
    double Bulk();
    double Engine() const;
    double BareLoop() const;

private:
    void AddColumns();

    std::size_t count_;
    SimulatedStudies studies_; ///< set after set
    std::vector<double> design_;
    std::vector<std::vector<Record>> records_;
    std::vector<std::vector<bare::DesignRow>> rows_;
    std::vector<std::vector<double>> variances_;
    std::vector<std::vector<double>> numbers_;
    std::vector<std::vector<int>> counts_;
    MABulkRegressionResults results_;
};

RegressedSets::RegressedSets(std::size_t count)
    : count_(count),
      studies_(SimulateStudies(count * setCount)),
      records_(setCount),
      rows_(setCount),
      variances_(setCount)
{
    for (std::size_t i = 0; i < count; ++i)
        design_.insert(design_.end(), {1.0, std::sin(static_cast<double>(i)), static_cast<double>(i)});
    for (std::size_t at = 0; at < count * setCount; ++at) {
        const std::size_t set = at / count;
        const double* const x = design_.data() + at % count * p;
        const double effect = studies_.effectSizes[at];
        const double variance = studies_.variances[at];
        records_[set].emplace_back(std::vector<double>{effect, variance, x[1], x[2]});
        rows_[set].push_back({x[0], x[1], x[2], effect});
        variances_[set].push_back(variance);
    }
    AddColumns();
}

void RegressedSets::AddColumns()
{
    MABulkRegressionResults& r = results_;
    for (double** const column :
         {&r.coefficients, &r.stdErrors, &r.statistics, &r.pValues, &r.minusLog10Ps, &r.ciLowers, &r.ciUppers,
          &r.covariance, &r.tau2, &r.tau2Lower, &r.tau2Upper, &r.q, &r.qPValue, &r.i2, &r.rSquare,
          &r.modelStatistic, &r.modelPValue, &r.modelMinusLog10P})
        *column = numbers_.emplace_back(p * p * setCount).data();
    for (int** const column :
         {&r.studyCount, &r.leftOut, &r.rank, &r.qDf, &r.modelDf1, &r.modelDf2, &r.status})
        *column = counts_.emplace_back(setCount).data();
}

double RegressedSets::Bulk()
{
    MABulkRegression model;
    model.tau2.search = MAConst::TAU2_SEARCH_GLOBAL;
    model.knappHartung = MAConst::KNAPP_HARTUNG_ADJUSTED;
    model.tau2Interval = MAConst::TAU2_INTERVAL_Q_PROFILE;
    const auto stride = static_cast<std::ptrdiff_t>(count_);
    const MABlockSets sets{
        {studies_.effectSizes.data(), 1, stride}, {studies_.variances.data(), 1, stride}, count_, setCount};
    RegressSets(sets, {design_.data(), p, 1, p}, model, results_);
    double sum = 0.0;
    for (std::size_t set = 0; set < setCount; ++set)
        sum += results_.q[set];
    return sum;
}

double RegressedSets::Engine() const
{
    MARegSettings settings;
    settings.SetDependent(0);
    settings.SetOMWVarIndex(1);
    settings.SetInterceptUse(true);
    settings.SetEstTauType("REML");
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    settings.SetKnapHartAdjust(true);
    settings.SetTau2Interval(MAConst::TAU2_INTERVAL_Q_PROFILE);
    for (const int covariate : {2, 3}) {
        KXModelEffect effect;
        effect.AddCovariate(covariate);
        settings.AddCovariate(covariate);
        settings.AddModelEffect(effect);
    }
    double sum = 0.0;
    for (const std::vector<Record>& set : records_) {
        VectorRecordIter records(set);
        MAREAlgorithm engine(settings);
        engine.BuildModel(records);
        sum += MARegOutputStats(settings, engine).GetResHomoChiSqure();
    }
    return sum;
}

double RegressedSets::BareLoop() const
{
    double sum = 0.0;
    for (std::size_t set = 0; set < setCount; ++set)
        sum += bare::FitRemlRegression(rows_[set], variances_[set]).residualQ;
    return sum;
}

template <class Yardstick>
void CompareRegressions(benchmark::State& state, Yardstick yardstick)
{
    RegressedSets sets(static_cast<std::size_t>(state.range(0)));
    if (!(std::abs(sets.Bulk() / yardstick(sets) - 1.0) <= 1e-9)) {
        state.SkipWithError("the regressions disagree");
        return;
    }
    TimeAgainstBareLoop(
        state, [&] { return sets.Bulk(); }, [&] { return yardstick(sets); });
}

/// The engine is the yardstick; the ratio is what is left of its time.
void RegressedSetsBesideEngine(benchmark::State& state)
{
    CompareRegressions(state, [](const RegressedSets& sets) { return sets.Engine(); });
}
BENCHMARK(RegressedSetsBesideEngine)->Arg(20)->UseManualTime();

/// The bare loops have neither tests nor intervals, and stop scoring within its tolerance.
void RegressedSetsBesideBareLoop(benchmark::State& state)
{
    CompareRegressions(state, [](const RegressedSets& sets) { return sets.BareLoop(); });
}
BENCHMARK(RegressedSetsBesideBareLoop)->Arg(20)->UseManualTime();

} // namespace
