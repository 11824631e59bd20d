#include "host/cli/Choices.h"
#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"
#include "host/cli/OutcomeOptions.h"
#include "host/cli/Presets.h"
#include "host/text/Measures.h"
#include "host/text/Tau2Estimators.h"
#include "host/text/Wording.h"

#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Settings = MAModelSettings;
using Json = nlohmann::ordered_json;

OptionDefinition PresetOption(Options& options)
{
    return {.name = "preset",
            .argument = "NAME",
            .help = fmt::format("settings that go together; options given beside it win: {} (default: none)",
                                NamesOfPresets()),
            .choices = PresetNames(),
            .store = [&options](const std::string& text) { options.preset = KnownPreset(text); },
            .value = [&options] { return options.preset ? Json(*options.preset) : Json(); }};
}

OptionDefinitions ModelOf(Options& options)
{
    Settings& settings = options.settings;
    return {
        AlsoTaking({{"RE", "random"}, {"FE", "fixed"}, {"EE", "fixed"}, {"CE", "fixed"}, {"common", "fixed"}},
                   OneOf("model", MODEL_CHOICES, settings, &Settings::GetModelType, &Settings::SetModelType,
                         "pooling model")),
        AlsoTaking({{PAULE_MANDEL, NameOf(TAU2_ESTIMATORS, MAConst::TAU2_EB)}},
                   OneOf("tau2", TAU2_ESTIMATORS, settings, &Settings::GetEstTauType,
                         &Settings::SetEstTauType, "between-study variance estimator")),
        AlsoTaking({{"HKSJ", "adjusted"}, {"KNHA", "adjusted"}},
                   OneOf("knapp-hartung", KNAPP_HARTUNG_CHOICES, settings, &Settings::GetKnapHartAdjustType,
                         &Settings::SetKnapHartAdjustType, "adjustment of the random model")),
        Level("level", options.notes, settings, &Settings::GetCILevel, &Settings::SetCILevel,
              "confidence level, a fraction, or a percentage from 50 on"),
    };
}

/// Ready-made effect sizes of many analyses have no tables to pool.
OptionDefinitions PoolingOf(Settings& settings, Command command)
{
    OptionDefinitions options;
    if (command != Command::BATCH)
        options.push_back(AlsoTaking({{"IV", "inverse-variance"}, {"MH", "mantel-haenszel"}},
                                     OneOf("weights", WEIGHT_CHOICES, settings, &Settings::GetWeightType,
                                           &Settings::SetWeightType, "study weights")));
    options.push_back(Number("null", ANY_NUMBER, settings, &Settings::GetNullHypothesis,
                             &Settings::SetNullHypothesis,
                             "effect under the null hypothesis, for the fixed model"));
    return options;
}

OptionDefinitions RegressionTests(RegressionOptions& options)
{
    return {
        Flag("dispersion", options.dispersion, "fixed model: multiply variances by the estimated dispersion"),
        Flag("normal-tests", options.normalTests, "standard normal instead of Student's t"),
    };
}

/// Pooled tables have a null hypothesis on the ratio scale, where 0 stands for no effect.
void CheckNullHypothesis(const Settings& settings)
{
    const double null = settings.GetNullHypothesis();
    if (IsMeasured(settings) && null != 0)
        RequireNatural("null", settings, null);
    else if (PoolsTables(settings) && MeasureOf(settings).isRatio && null < 0)
        throw UnusableInput(fmt::format("--null: {} cannot be a ratio; with --weights mantel-haenszel it is "
                                        "one (default: no effect).",
                                        null));
}

} // namespace

OptionGroup ModelOptions(Options& options)
{
    OptionGroup group = {.heading = "Model", .options = {PresetOption(options)}, .complete = [&options] {
                             CheckNullHypothesis(options.settings);
                         }};
    for (OptionDefinitions more : {ModelOf(options), options.command == Command::REGRESSION
                                                         ? RegressionTests(options.regression)
                                                         : PoolingOf(options.settings, options.command)})
        for (OptionDefinition& option : more)
            group.options.push_back(std::move(option));
    return group;
}

} // namespace host
