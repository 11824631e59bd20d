// The library's work and the yardsticks, each done once for a tool that counts instructions by function; see
// count_instructions.py. Each runs once before, uncounted, so that no work of a first call is counted.

#include "Workloads.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>

namespace {

/// The count is part of the function, because the compiler merges functions that do not differ.
volatile std::size_t countedStudies;

template <class Work, std::size_t count>
[[gnu::noinline]] bare::Fit CountLibrary(Work& work)
{
    countedStudies = count;
    return work.Run();
}

template <class Work, std::size_t count>
[[gnu::noinline]] bare::Fit CountBareLoop(Work& work)
{
    countedStudies = count;
    return work.Bare();
}

template <class Work, std::size_t count>
void Count()
{
    Work work(count);
    if (!AgreesWithBareLoop(work) ||
        !Agree(CountLibrary<Work, count>(work), CountBareLoop<Work, count>(work))) {
        std::fputs("library and yardstick disagree\n", stderr);
        std::exit(1);
    }
}

} // namespace

int main()
{
    Count<TableRun, 13>();
    Count<RemlFit, 10>();
    Count<RemlFit, 1000>();
    Count<RegressionRun, 1000>();
    Count<CumulativeRun, 1000>();
    Count<ManySetsFixed, 10>();
    Count<ManySetsMoment, 10>();
    Count<ManySetsReml, 10>();
}
