#include "host/cli/RandomEffectsOptions.h"

#include "host/cli/OptionKinds.h"
#include "host/text/JsonValue.h"
#include "host/text/Wording.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Settings = MAModelSettings;
using Json = nlohmann::ordered_json;

constexpr const char* ABOVE = "probability-above";
constexpr const char* BELOW = "probability-below";

OptionDefinition Threshold(const char* name, Settings& settings, double (Settings::*get)() const,
                           void (Settings::*set)(double), const char* side)
{
    return {.name = name,
            .argument = "NUMBER",
            .help = fmt::format("probability that the true effect of a new study is {} it, of ratios on "
                                "their natural scale (default: none)",
                                side),
            .store = [&settings, set](const std::string& text) { (settings.*set)(ParseNumber(text)); },
            .value = [&settings, get] { return ToJson((settings.*get)()); }};
}

bool IsLikelihoodEstimator(MAConst::TAU2ESTIMATOR estimator)
{
    return estimator == MAConst::TAU2_ML || estimator == MAConst::TAU2_REML;
}

bool Iterates(MAConst::MODELTYPE model, MAConst::TAU2ESTIMATOR estimator)
{
    return model == MAConst::MODEL_RANDOM &&
           (IsLikelihoodEstimator(estimator) || estimator == MAConst::TAU2_EB);
}

void RefuseUnderFixedModel(const Options& options)
{
    if (options.settings.GetModelType() != MAConst::MODEL_FIXED)
        return;
    for (const char* const name : {"tau2-interval", "prediction", ABOVE, BELOW})
        if (options.given.contains(name))
            throw UnusableInput(fmt::format("--{} is for the random-effects model.", name));
}

void CheckThreshold(const Options& options, const char* name, double threshold)
{
    if (options.given.contains(name) && WordingOfEffect(options.settings).isRatio && threshold <= 0)
        throw UnusableInput(fmt::format("--{}: a ratio is above 0, and {} is not.", name, threshold));
}

} // namespace

std::vector<OptionDefinition> BetweenStudyVariance(Settings& settings)
{
    return {
        OneOf("tau2-search", TAU2_SEARCH_CHOICES, settings, &Settings::GetTau2Search,
              &Settings::SetTau2Search, "how reml, ml and eb find their estimate"),
        OneOf("tau2-interval", TAU2_INTERVAL_CHOICES, settings, &Settings::GetTau2Interval,
              &Settings::SetTau2Interval, "confidence interval of the between-study variance"),
    };
}

std::vector<OptionDefinition> Predictions(Settings& settings)
{
    return {
        OneOf("prediction", PREDICTION_CHOICES, settings, &Settings::GetPrediction, &Settings::SetPrediction,
              "distribution of the prediction interval"),
        Threshold(ABOVE, settings, &Settings::GetProbabilityAbove, &Settings::SetProbabilityAbove, "above"),
        Threshold(BELOW, settings, &Settings::GetProbabilityBelow, &Settings::SetProbabilityBelow, "below"),
    };
}

void CheckRandomEffects(const Options& options)
{
    RefuseUnderFixedModel(options);
    if (options.given.contains(ABOVE) && options.given.contains(BELOW))
        throw UnusableInput(fmt::format("--{} and --{} cannot be asked for together.", ABOVE, BELOW));
    CheckThreshold(options, ABOVE, options.settings.GetProbabilityAbove());
    CheckThreshold(options, BELOW, options.settings.GetProbabilityBelow());
    if (options.settings.GetTau2Interval() == MAConst::TAU2_INTERVAL_PROFILE_LIKELIHOOD &&
        !IsLikelihoodEstimator(options.settings.GetEstTauType()))
        throw UnusableInput("--tau2-interval profile-likelihood is for --tau2 reml and --tau2 ml.");
}

void CheckIterations(const Settings& settings)
{
    const bool iterates =
        Iterates(settings.GetModelType(), settings.GetEstTauType()) ||
        (settings.GetIsTRIMFILL() && Iterates(settings.GetTFModelType(), settings.GetTFEstTauType()));
    if (iterates && settings.GetTau2Search() == MAConst::TAU2_SEARCH_SCORING && settings.GetMaxIter() < 1)
        throw UnusableInput("--max-iterations: 0 leaves the estimator of tau² without an iteration.");
}

} // namespace host
