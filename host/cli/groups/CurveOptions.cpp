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

bool HasBubbles(const Options& options)
{
    return !options.bubbles.empty() || !options.regression.covariates.empty();
}

/// Both are seen in pictures alone.
void CheckCurves(const Options& options)
{
    const bool hasPictures = options.htmlPath || options.plotsFolder;
    if (options.picture.hasDrapery && !hasPictures)
        throw UnusableInput("--drapery needs --plots or --html, which draw it.");
    if (!options.picture.hasPredictionBand)
        return;
    if (!hasPictures)
        throw UnusableInput("--prediction-band needs --plots or --html, which draw it.");
    if (!HasBubbles(options))
        throw UnusableInput(options.command == Command::REGRESSION
                                ? "--prediction-band needs --covariate, over which its plots are."
                                : "--prediction-band needs --bubble, in whose plots it is.");
    if (options.settings.GetModelType() == MAConst::MODEL_FIXED)
        throw UnusableInput(
            "--prediction-band needs the random-effects model: a fixed effect does not vary.");
}

} // namespace

OptionGroup CurveOptions(Options& options)
{
    if (options.command == Command::BATCH)
        return {};
    return {
        .heading = "Curves", .options = CurvesOf(options), .complete = [&options] { CheckCurves(options); }};
}

} // namespace host
