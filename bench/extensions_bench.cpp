// The analyses after the overall model, as whole runs on ready-made effect sizes, and those of
// meta-regressions.

#include "SimulatedStudies.h"

#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/regression/MAREAlgorithm.h"
#include "meta_analysis/settings/MAModelSettings.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <utility>
#include <vector>

using namespace MA_NAMESPACE;

namespace {

enum Column : int
{
    EFFECT,
    VARIANCE,
    GROUP,
    ORDER
};

MAModelSettings ReadyMadeSettings(MAConst::MODELTYPE model)
{
    MAModelSettings settings;
    settings.SetOutcomesType(MAConst::OUTCOME_CONTINUOUS);
    settings.SetInputESType(MAConst::INPUT_READY_MADE);
    settings.SetInputEffectSizeIndex(EFFECT);
    settings.SetInputVarianceIndex(VARIANCE);
    settings.SetModelType(model);
    return settings;
}

/// Studies in subgroups of 100, in a mixed order.
VectorRecordIter GroupedStudies(std::size_t count)
{
    const SimulatedStudies studies = SimulateStudies(count);
    std::vector<Record> records;
    records.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        records.emplace_back(std::vector<double>{studies.effectSizes[i], studies.variances[i],
                                                 static_cast<double>(i % (count / 100 + 1)),
                                                 static_cast<double>(i * 7919 % count)});
    return VectorRecordIter(std::move(records));
}

void TimeRuns(benchmark::State& state, const MAModelSettings& settings)
{
    VectorRecordIter records = GroupedStudies(static_cast<std::size_t>(state.range(0)));
    while (state.KeepRunning()) {
        MAContModel analysis(settings);
        if (analysis.RUN(records, KXVarList()).IsError()) {
            state.SkipWithError("the analysis failed");
            break;
        }
    }
}

void Subgroups(benchmark::State& state)
{
    MAModelSettings settings = ReadyMadeSettings(MAConst::MODEL_RANDOM);
    settings.SetSubGroupIndex(GROUP);
    TimeRuns(state, settings);
}
BENCHMARK(Subgroups)->Arg(100000)->Unit(benchmark::kMillisecond);

void TrimAndFill(benchmark::State& state)
{
    MAModelSettings settings = ReadyMadeSettings(MAConst::MODEL_RANDOM);
    settings.SetIsTRIMFILL(true);
    TimeRuns(state, settings);
}
BENCHMARK(TrimAndFill)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

void CumulativeReml(benchmark::State& state)
{
    MAModelSettings settings = ReadyMadeSettings(MAConst::MODEL_RANDOM);
    settings.SetCommulativeIndex(ORDER);
    TimeRuns(state, settings);
}
BENCHMARK(CumulativeReml)->Arg(1000)->Unit(benchmark::kMillisecond);

enum RegressionColumn : int
{
    COVARIATE = 2,
    CLUSTER
};

/// A regression by REML on a covariate, of studies in `clusterCount` clusters.
void TimeRegressions(benchmark::State& state, MARegSettings settings, std::size_t clusterCount)
{
    const SimulatedStudies studies = SimulateStudies(static_cast<std::size_t>(state.range(0)));
    std::vector<Record> rows;
    for (std::size_t i = 0; i < studies.effectSizes.size(); ++i)
        rows.emplace_back(std::vector<double>{studies.effectSizes[i], studies.variances[i],
                                              static_cast<double>(i * 7919 % 101),
                                              static_cast<double>(i % clusterCount)});
    settings.SetDependent(EFFECT);
    settings.SetOMWVarIndex(VARIANCE);
    settings.SetInterceptUse(true);
    settings.SetEstTauType("REML");
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    settings.AddCovariate(COVARIATE);
    KXModelEffect effect;
    effect.AddCovariate(COVARIATE);
    settings.AddModelEffect(effect);
    VectorRecordIter records(rows);
    while (state.KeepRunning()) {
        MAREAlgorithm engine(settings);
        if (engine.BuildModel(records).IsError()) {
            state.SkipWithError("the regression failed");
            break;
        }
    }
}

void ClusterRobust(benchmark::State& state)
{
    MARegSettings settings;
    settings.SetCluster(CLUSTER);
    TimeRegressions(state, settings, static_cast<std::size_t>(state.range(1)));
}
BENCHMARK(ClusterRobust)
    ->Args({10000, 2})
    ->Args({10000, 500})
    ->Args({10000, 10000})
    ->Unit(benchmark::kMillisecond);

void Permutations(benchmark::State& state)
{
    MARegSettings settings;
    settings.SetPermutations(static_cast<int>(state.range(1)));
    TimeRegressions(state, settings, 1);
}
BENCHMARK(Permutations)
    ->Args({13, 1000})
    ->Args({13, 10000})
    ->Args({1000, 1000})
    ->Unit(benchmark::kMillisecond);

} // namespace
