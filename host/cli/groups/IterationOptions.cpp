#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"

#include "meta_analysis/settings/MAEstimators.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Settings = MAModelSettings;

OptionDefinitions IterationOf(Settings& settings)
{
    return {
        Count("max-iterations", settings, &Settings::GetMaxIter, &Settings::SetMaxIter,
              "limit of the iterations"),
        Count("max-step-halving", settings, &Settings::GetMaxStepHalving, &Settings::SetMaxStepHalving,
              "limit of the step halvings in an iteration"),
        Number("tolerance", POSITIVE, settings, &Settings::GetConnvergenceTol, &Settings::SetConvergenceTol,
               "iterations stop below a step of this size"),
    };
}

bool Iterates(MAConst::MODELTYPE model, MAConst::TAU2ESTIMATOR estimator)
{
    return model == MAConst::MODEL_RANDOM && IsIterative(estimator);
}

/// Refuses an iterative estimator without an iteration, whose estimate would be its starting value.
void CheckIterations(const Settings& settings)
{
    const bool iterates =
        Iterates(settings.GetModelType(), settings.GetEstTauType()) ||
        (settings.GetIsTRIMFILL() && Iterates(settings.GetTFModelType(), settings.GetTFEstTauType()));
    if (iterates && settings.GetTau2Search() == MAConst::TAU2_SEARCH_SCORING && settings.GetMaxIter() < 1)
        throw UnusableInput("--max-iterations: 0 leaves the estimator of tau² without an iteration.");
}

} // namespace

OptionGroup IterationOptions(Options& options)
{
    return {.heading = "Iteration", .options = IterationOf(options.settings), .complete = [&options] {
                CheckIterations(options.settings);
            }};
}

} // namespace host
