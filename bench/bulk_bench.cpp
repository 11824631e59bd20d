// Many sets in one call, against plain loops over the same sets.

#include "AgainstBareLoop.h"
#include "Workloads.h"

#include <benchmark/benchmark.h>

namespace {

template <class Work>
void CompareSets(benchmark::State& state)
{
    Compare<Work>(state);
    state.counters["sets"] = static_cast<double>(ManySets::setCount);
}

BENCHMARK(CompareSets<ManySetsFixed>)->Name("ManySetsFixed")->Arg(10)->Arg(100)->UseManualTime();
BENCHMARK(CompareSets<ManySetsMoment>)->Name("ManySetsMoment")->Arg(10)->Arg(100)->UseManualTime();
BENCHMARK(CompareSets<ManySetsReml>)->Name("ManySetsReml")->Arg(3)->Arg(10)->Arg(100)->UseManualTime();

} // namespace
