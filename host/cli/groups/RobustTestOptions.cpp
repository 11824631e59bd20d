#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"

using namespace MA_NAMESPACE;

namespace host {

OptionGroup RobustTestOptions(Options& options)
{
    if (options.command != Command::REGRESSION)
        return {};
    using Settings = MARegSettings;
    Settings& tests = options.regression.tests;
    return {
        .heading = "Robust tests",
        .options = {
            Column("cluster", options.regression.cluster,
                   "clusters of dependent effect sizes, for a robust variance; texts or numbers"),
            OneOf("sandwich", SANDWICH_CHOICES, tests, &Settings::GetSandwich, &Settings::SetSandwich,
                  "robust variance"),
            Count("permutations", tests, &Settings::GetPermutations, &Settings::SetPermutations,
                  "permutation test of at most so many permutations, exact when there are no more"),
            Count("seed", tests, &Settings::GetSeed, &Settings::SetSeed, "selects the permutations drawn"),
        }};
}

} // namespace host
