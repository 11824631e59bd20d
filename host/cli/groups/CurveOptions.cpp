#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"

namespace host {

namespace {

OptionDefinitions CurvesOf(Options& options)
{
    OptionDefinitions definitions;
    if (HasSteps(options.command))
        definitions.push_back(Flag("drapery", options.picture.hasDrapery,
                                   "draw the p-value functions of the studies and the pooled effect"));
    definitions.push_back(Flag("prediction-band", options.picture.hasPredictionBand,
                               "prediction band about the lines of bubble plots"));
    return definitions;
}

} // namespace

OptionGroup CurveOptions(Options& options)
{
    if (options.command == Command::BATCH)
        return {};
    return {.heading = "Curves", .options = CurvesOf(options)};
}

} // namespace host
