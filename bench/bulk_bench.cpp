// Many sets in one call, against plain loops over the same sets.

#include "AgainstBareLoop.h"
#include "Workloads.h"

#include <benchmark/benchmark.h>

#include <cstddef>

namespace {

template <class Work>
void CompareSets(benchmark::State& state)
{
    Work work(static_cast<std::size_t>(state.range(0)));
    if (!AgreesWithBareLoop(work)) {
        state.SkipWithError("library and yardstick disagree");
        return;
    }
    TimeAgainstBareLoop(
        state, [&] { return work.Run(); }, [&] { return work.Bare(); });
    state.counters["sets"] = static_cast<double>(ManySets::setCount);
}

BENCHMARK(CompareSets<ManySetsFixed>)->Name("ManySetsFixed")->Arg(10)->Arg(100)->UseManualTime();
BENCHMARK(CompareSets<ManySetsMoment>)->Name("ManySetsMoment")->Arg(10)->Arg(100)->UseManualTime();
BENCHMARK(CompareSets<ManySetsReml>)->Name("ManySetsReml")->Arg(3)->Arg(10)->Arg(100)->UseManualTime();

} // namespace
