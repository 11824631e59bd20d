#include "host/cli/Choices.h"
#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"
#include "host/cli/OutcomeOptions.h"
#include "host/text/JsonValue.h"
#include "host/text/Measures.h"
#include "host/text/Tau2Estimators.h"
#include "host/text/Wording.h"

#include "meta_analysis/settings/MAEstimators.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Settings = MAModelSettings;

constexpr const char* ABOVE = "probability-above";
constexpr const char* BELOW = "probability-below";

OptionDefinition Threshold(const char* name, Settings& settings, double (Settings::*get)() const,
                           void (Settings::*set)(double), const char* side)
{
    return {.name = name,
            .argument = "NUMBER",
            .help = fmt::format("probability that the true effect of a new study is {} it, on the "
                                "natural scale (default: none)",
                                side),
            .store = [&settings, set](const std::string& text) { (settings.*set)(ParseNumber(text)); },
            .value = [&settings, get] { return ToJson((settings.*get)()); }};
}

OptionDefinitions BetweenStudyVariance(Settings& settings)
{
    const std::string search = fmt::format("how {} find their estimate", NamesOfEstimators(IsIterative));
    return {
        OneOf("tau2-search", TAU2_SEARCH_CHOICES, settings, &Settings::GetTau2Search,
              &Settings::SetTau2Search, search.c_str()),
        AlsoTaking({{"QP", "q-profile"}, {"PL", "profile-likelihood"}},
                   OneOf("tau2-interval", TAU2_INTERVAL_CHOICES, settings, &Settings::GetTau2Interval,
                         &Settings::SetTau2Interval, "confidence interval of the between-study variance")),
    };
}

/// A regression has no prediction of new studies.
OptionDefinition PredictionInterval(Settings& settings)
{
    return OneOf("prediction", PREDICTION_CHOICES, settings, &Settings::GetPrediction,
                 &Settings::SetPrediction, "distribution of the prediction interval");
}

OptionDefinitions Thresholds(Settings& settings)
{
    return {
        Threshold(ABOVE, settings, &Settings::GetProbabilityAbove, &Settings::SetProbabilityAbove, "above"),
        Threshold(BELOW, settings, &Settings::GetProbabilityBelow, &Settings::SetProbabilityBelow, "below"),
    };
}

void CheckThreshold(const Options& options, const char* name, double threshold)
{
    if (!options.given.contains(name))
        return;
    if (IsMeasured(options.settings))
        RequireNatural(name, options.settings, threshold);
    else if (MeasureOf(options.settings).isRatio && threshold <= 0)
        throw UnusableInput(fmt::format("--{}: a ratio is above 0, and {} is not.", name, threshold));
}

void CheckTau2Interval(const Settings& settings)
{
    if (settings.GetTau2Interval() == MAConst::TAU2_INTERVAL_PROFILE_LIKELIHOOD &&
        !HasLikelihood(settings.GetEstTauType()))
        throw UnusableInput(fmt::format("--tau2-interval profile-likelihood is for {}.",
                                        NamesOfEstimators(HasLikelihood, "--tau2 ")));
}

void CheckRandomEffects(const Options& options)
{
    if (options.given.contains(ABOVE) && options.given.contains(BELOW))
        throw UnusableInput(fmt::format("--{} and --{} cannot be asked for together.", ABOVE, BELOW));
    CheckThreshold(options, ABOVE, options.settings.GetProbabilityAbove());
    CheckThreshold(options, BELOW, options.settings.GetProbabilityBelow());
    CheckTau2Interval(options.settings);
}

} // namespace

OptionGroup RandomEffectsOptions(Options& options)
{
    OptionGroup group = {.heading = "Random-effects model",
                         .options = BetweenStudyVariance(options.settings),
                         .complete = [&options] { CheckRandomEffects(options); }};
    if (options.command != Command::REGRESSION)
        group.options.push_back(PredictionInterval(options.settings));
    if (HasSteps(options.command))
        for (const OptionDefinition& option : Thresholds(options.settings))
            group.options.push_back(option);
    return group;
}

} // namespace host
