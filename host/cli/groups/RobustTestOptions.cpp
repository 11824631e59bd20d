#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// Each of these options needs another.
void CheckTests(const Options& options)
{
    if (options.given.contains("sandwich") && !options.regression.cluster)
        throw UnusableInput("--sandwich needs --cluster, the column whose values are the clusters.");
    if (options.given.contains("seed") && options.regression.tests.GetPermutations() == 0)
        throw UnusableInput("--seed needs --permutations, which it selects.");
}

} // namespace

OptionGroup RobustTestOptions(Options& options)
{
    if (options.command != Command::REGRESSION)
        return {};
    using Settings = MARegSettings;
    Settings& tests = options.regression.tests;
    return {.heading = "Robust tests",
            .options =
                {
                    Column("cluster", options.regression.cluster,
                           "clusters of dependent effect sizes, for a robust variance; texts or numbers"),
                    OneOf("sandwich", SANDWICH_CHOICES, tests, &Settings::GetSandwich, &Settings::SetSandwich,
                          "robust variance"),
                    Count("permutations", tests, &Settings::GetPermutations, &Settings::SetPermutations,
                          "permutation test of at most so many permutations, exact when there are no more"),
                    Count("seed", tests, &Settings::GetSeed, &Settings::SetSeed,
                          "selects the permutations drawn"),
                },
            .complete = [&options] { CheckTests(options); }};
}

} // namespace host
