// The library's work against the yardsticks, and the memory of a run.

#include "AgainstBareLoop.h"
#include "PeakMemory.h"
#include "Workloads.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>

namespace {

/// As `Compare`, with what a run holds at most beyond the host's records.
void CompareEffectsRun(benchmark::State& state)
{
    Compare<EffectsRun>(state);
    EffectsRun work(static_cast<std::size_t>(state.range(0)));
    const PeakMemory peakMemory;
    work.Run();
    state.counters["bytes_per_study"] =
        static_cast<double>(peakMemory.Bytes()) / static_cast<double>(state.range(0));
}

/// Scoring stops within its tolerance of the maximum, the search at it.
void CompareRemlSearch(benchmark::State& state)
{
    RemlSearch work(static_cast<std::size_t>(state.range(0)));
    if (!(std::abs(work.Run() - work.Bare()) <= 1e-4)) {
        state.SkipWithError("search and scoring disagree");
        return;
    }
    TimeAgainstBareLoop(
        state, [&] { return work.Run(); }, [&] { return work.Bare(); });
    state.counters["evaluations"] = work.Evaluations();
}

BENCHMARK(Compare<TableRun>)->Name("TableRun")->Arg(13)->UseManualTime();
BENCHMARK(CompareEffectsRun)->Name("EffectsRun")->RangeMultiplier(10)->Range(10, 1000000)->UseManualTime();
BENCHMARK(Compare<RemlFit>)->Name("RemlFit")->RangeMultiplier(10)->Range(10, 1000000)->UseManualTime();
BENCHMARK(CompareRemlSearch)->Name("RemlSearch")->Arg(10)->Arg(100)->Arg(1000)->Arg(1000000)->UseManualTime();
BENCHMARK(Compare<RegressionRun>)->Name("RegressionRun")->Arg(13)->Arg(1000)->Arg(100000)->UseManualTime();
BENCHMARK(Compare<CumulativeRun>)->Name("CumulativeRun")->Arg(1000)->Arg(10000)->Arg(100000)->UseManualTime();

} // namespace
