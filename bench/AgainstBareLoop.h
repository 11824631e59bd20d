#pragma once

#include "Workloads.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <limits>

/// Seconds of processor time that `calls` of `work` take.
template <class Work>
double ProcessorTime(int calls, Work& work)
{
    const std::clock_t start = std::clock();
    for (int call = 0; call < calls; ++call)
        benchmark::DoNotOptimize(work());
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

/// The number of calls that fill two milliseconds, so that a step of the clock, a microsecond, is small.
template <class Work>
int CallsPerBatch(Work& work)
{
    int calls = 1;
    while (ProcessorTime(calls, work) < 2e-3)
        calls *= 2;
    return calls;
}

/// Times batches of the library's work and of its yardstick in turn, so that both meet the same state of the
/// machine. Counters: the seconds that one call takes in the fastest batch of each. The benchmark's own time
/// is the library's mean, for it counts the library's batches alone.
template <class Library, class Yardstick>
void TimeAgainstBareLoop(benchmark::State& state, Library library, Yardstick yardstick)
{
    const int libraryCalls = CallsPerBatch(library);
    const int yardstickCalls = CallsPerBatch(yardstick);
    double librarySeconds = std::numeric_limits<double>::infinity();
    double yardstickSeconds = std::numeric_limits<double>::infinity();
    while (state.KeepRunning()) {
        const double batch = ProcessorTime(libraryCalls, library);
        state.SetIterationTime(batch);
        librarySeconds = std::min(librarySeconds, batch / libraryCalls);
        yardstickSeconds =
            std::min(yardstickSeconds, ProcessorTime(yardstickCalls, yardstick) / yardstickCalls);
    }
    state.counters["seconds"] = librarySeconds;
    state.counters["bare_seconds"] = yardstickSeconds;
}

/// Times a workload of Workloads.h, of the size that the benchmark's argument is, against its bare loop.
template <class Work>
void Compare(benchmark::State& state)
{
    Work work(static_cast<std::size_t>(state.range(0)));
    if (!AgreesWithBareLoop(work)) {
        state.SkipWithError("library and yardstick disagree");
        return;
    }
    TimeAgainstBareLoop(
        state, [&] { return work.Run(); }, [&] { return work.Bare(); });
}
