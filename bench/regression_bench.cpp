// What a meta-regression answers beside its coefficients.

#include "SimulatedStudies.h"

#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/regression/MAFEAlgorithm.h"
#include "meta_analysis/regression/MAREAlgorithm.h"
#include "meta_analysis/settings/MARegSettings.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

using namespace MA_NAMESPACE;

namespace {

enum Column : int
{
    EFFECT,
    VARIANCE,
    FIRST_PREDICTOR,
    CLUSTER = 3 ///< where there is one covariate
};

/// Effects and variances, with the numbers that `predictors(i)` gives for study i.
template <class Predictors>
std::vector<Record> RowsOf(std::size_t count, Predictors predictors)
{
    const SimulatedStudies studies = SimulateStudies(count);
    std::vector<Record> rows;
    rows.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        std::vector<double> row = {studies.effectSizes[i], studies.variances[i]};
        for (const double value : predictors(i))
            row.push_back(value);
        rows.emplace_back(std::move(row));
    }
    return rows;
}

void AddCovariates(MARegSettings& settings, int first, int count)
{
    for (int covariate = first; covariate < first + count; ++covariate) {
        KXModelEffect effect;
        effect.AddCovariate(covariate);
        settings.AddCovariate(covariate);
        settings.AddModelEffect(effect);
    }
}

MARegSettings Settings()
{
    MARegSettings settings;
    settings.SetDependent(EFFECT);
    settings.SetOMWVarIndex(VARIANCE);
    settings.SetInterceptUse(true);
    settings.SetEstTauType("REML");
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    return settings;
}

template <class Engine>
void TimeBuilds(benchmark::State& state, const MARegSettings& settings, std::vector<Record> rows)
{
    VectorRecordIter records(std::move(rows));
    while (state.KeepRunning()) {
        Engine engine(settings);
        if (engine.BuildModel(records).IsError()) {
            state.SkipWithError("the regression failed");
            break;
        }
    }
}

/// A fixed-effect regression on a factor of five levels and nine covariates, with hypotheses and predictions
/// when the argument is 1.
void RegressionQuestions(benchmark::State& state)
{
    std::vector<Record> rows = RowsOf(10000, [](std::size_t i) {
        std::vector<double> predictors = {static_cast<double>(i % 5)};
        for (int j = 1; j <= 9; ++j)
            predictors.push_back(std::sin(static_cast<double>(i) * j));
        return predictors;
    });
    MARegSettings settings = Settings();
    settings.AddFactor(FIRST_PREDICTOR, 5);
    KXModelEffect factor;
    factor.AddFactor(FIRST_PREDICTOR);
    settings.AddModelEffect(factor);
    AddCovariates(settings, FIRST_PREDICTOR + 1, 9);
    if (state.range(0) == 1) {
        std::vector<std::vector<double>> weights(10, std::vector<double>(15));
        for (std::size_t i = 0; i < weights.size(); ++i)
            weights[i][i < 5 ? i : i + 1] = 1.0;
        settings.SetHypotheses(std::move(weights));
        settings.SetReferenceLevel(FIRST_PREDICTOR, 0);
        settings.SetPredictions(std::vector<Record>(rows.begin(), rows.begin() + 100));
    }
    TimeBuilds<MAFEAlgorithm>(state, settings, std::move(rows));
}
BENCHMARK(RegressionQuestions)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

/// Deletion diagnostics on an intercept and two covariates.
void RegressionInfluenceReml(benchmark::State& state)
{
    MARegSettings settings = Settings();
    settings.SetInfluence(true);
    AddCovariates(settings, FIRST_PREDICTOR, 2);
    const auto count = static_cast<std::size_t>(state.range(0));
    TimeBuilds<MAREAlgorithm>(state, settings, RowsOf(count, [count](std::size_t i) {
                                  return std::vector<double>{static_cast<double>(i % (count / 100 + 1)),
                                                             static_cast<double>(i * 7919 % count)};
                              }));
}
BENCHMARK(RegressionInfluenceReml)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);

void RegressionBubblePlot(benchmark::State& state)
{
    MARegSettings settings = Settings();
    AddCovariates(settings, FIRST_PREDICTOR, 1);
    VectorRecordIter records(RowsOf(static_cast<std::size_t>(state.range(0)), [](std::size_t i) {
        return std::vector<double>{std::sin(static_cast<double>(i))};
    }));
    MAFEAlgorithm engine(settings);
    engine.BuildModel(records);
    MARegBubblePlot plot;
    while (state.KeepRunning())
        if (engine.BubblePlot(records, FIRST_PREDICTOR, 100, plot).IsError())
            state.SkipWithError("the plot failed");
}
BENCHMARK(RegressionBubblePlot)->Arg(10000)->Unit(benchmark::kMillisecond);

/// On one covariate, with studies in clusters.
std::vector<Record> ClusteredRows(std::size_t count, std::size_t clusterCount)
{
    return RowsOf(count, [clusterCount](std::size_t i) {
        return std::vector<double>{static_cast<double>(i * 7919 % 101),
                                   static_cast<double>(i % clusterCount)};
    });
}

void ClusterRobust(benchmark::State& state)
{
    MARegSettings settings = Settings();
    AddCovariates(settings, FIRST_PREDICTOR, 1);
    settings.SetCluster(CLUSTER);
    TimeBuilds<MAREAlgorithm>(
        state, settings,
        ClusteredRows(static_cast<std::size_t>(state.range(0)), static_cast<std::size_t>(state.range(1))));
}
BENCHMARK(ClusterRobust)
    ->Args({10000, 2})
    ->Args({10000, 500})
    ->Args({10000, 10000})
    ->Unit(benchmark::kMillisecond);

void Permutations(benchmark::State& state)
{
    MARegSettings settings = Settings();
    AddCovariates(settings, FIRST_PREDICTOR, 1);
    settings.SetPermutations(static_cast<int>(state.range(1)));
    TimeBuilds<MAREAlgorithm>(state, settings, ClusteredRows(static_cast<std::size_t>(state.range(0)), 1));
}
BENCHMARK(Permutations)
    ->Args({13, 1000})
    ->Args({13, 10000})
    ->Args({1000, 1000})
    ->Unit(benchmark::kMillisecond);

} // namespace
