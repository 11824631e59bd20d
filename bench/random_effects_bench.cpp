// The random-effects model by estimator of the between-study variance.

#include "Workloads.h"

#include <benchmark/benchmark.h>

#include <cstddef>

using namespace MA_NAMESPACE;

namespace {

void RandomEffects(benchmark::State& state, MAConst::TAU2ESTIMATOR estimator)
{
    const SimulatedStudies studies = SimulateStudies(static_cast<std::size_t>(state.range(0)));
    while (state.KeepRunning())
        benchmark::DoNotOptimize(FitRandomEffects(studies, estimator));
    state.SetComplexityN(state.range(0));
}

void StudyCounts(benchmark::internal::Benchmark* benchmark)
{
    benchmark->RangeMultiplier(100)->Range(10, 100000)->Complexity(benchmark::oN);
}
BENCHMARK_CAPTURE(RandomEffects, HE, MAConst::TAU2_HE)->Apply(StudyCounts);
BENCHMARK_CAPTURE(RandomEffects, HS, MAConst::TAU2_HS)->Apply(StudyCounts);
BENCHMARK_CAPTURE(RandomEffects, DL, MAConst::TAU2_DL)->Apply(StudyCounts);
BENCHMARK_CAPTURE(RandomEffects, SJ, MAConst::TAU2_SJ)->Apply(StudyCounts);
BENCHMARK_CAPTURE(RandomEffects, ML, MAConst::TAU2_ML)->Apply(StudyCounts);
BENCHMARK_CAPTURE(RandomEffects, REML, MAConst::TAU2_REML)->Apply(StudyCounts);
BENCHMARK_CAPTURE(RandomEffects, EB, MAConst::TAU2_EB)->Apply(StudyCounts);

} // namespace
