#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"

namespace host {

OptionGroup HypothesisOptions(Options& options)
{
    if (options.command != Command::REGRESSION)
        return {};
    return {.heading = "Hypotheses and predictions",
            .options = {
                TextList("hypothesis", "WEIGHTS", options.regression.hypotheses,
                         "L1,L2,... or L1,L2,...=R: test that the coefficients, in the order of the report "
                         "with the intercept first, times these weights have the sum R (default 0); "
                         "repeatable, several are also tested together"),
                TextList("predict", "VALUES", options.regression.predictions,
                         "NAME=VALUE,...: predict the effect at a value of each covariate and factor, "
                         "repeatable"),
            }};
}

} // namespace host
