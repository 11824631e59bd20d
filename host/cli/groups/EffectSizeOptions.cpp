#include "host/cli/Choices.h"
#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"
#include "host/cli/OutcomeOptions.h"
#include "host/text/Measures.h"
#include "host/text/Wording.h"

#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Settings = MAModelSettings;

OptionDefinitions BinaryEffect(Settings& settings)
{
    OptionDefinitions zeroCells =
        ZeroCellOptions(settings, "tables receive the zero-count constant in all cells");
    return {
        OneOf("effect", BINARY_MEASURES, settings, &Settings::GetBinaryEstType, &Settings::SetBinaryEstType,
              "effect size"),
        std::move(zeroCells[0]),
        std::move(zeroCells[1]),
        PooledZeroCellOption(settings),
        Flag("drop-double-zero", settings, &Settings::GetDropBinZero, &Settings::SetDropBinZero,
             "drop tables without events, or without non-events, in both groups"),
    };
}

OptionDefinitions ContinuousEffect(Settings& settings)
{
    return {
        OneOf("effect", CONTINUOUS_MEASURES, settings, &Settings::GetContinousEstType,
              &Settings::SetContinousEstType, "effect size"),
        Flag("equal-variances", settings, &Settings::GetVarEqualAssumption, &Settings::SetVarEqualAssumption,
             "mean difference: assume equal variances in both groups"),
        Flag("variance-adjustment", settings, &Settings::GetVarianceAdjustment,
             &Settings::SetVarianceAdjustment, "Cohen's d, Hedges' g: adjusted variance"),
        OneOf("glass-group", GLASS_GROUP_CHOICES, settings, &Settings::GetGlassDsVarDependentGroup,
              &Settings::SetGlassDsVarDependentGroup, "whose standard deviation divides in Glass's delta"),
    };
}

/// The measure of ready-made effect sizes. The outcome, which may be given later, says which are allowed.
OptionDefinition ReadyMadeEffect(Options& options)
{
    return {.name = "effect",
            .argument = "NAME",
            .help = fmt::format("what the effect sizes are (default the first):\ncontinuous outcome: {}\n"
                                "binary outcome: {}",
                                NamesOf(CONTINUOUS_MEASURES), NamesOf(BINARY_MEASURES)),
            .store = [&options](const std::string& text) { options.readyMadeEffect = text; },
            .value = [&options] { return nlohmann::ordered_json(MeasureName(options.settings)); }};
}

OptionDefinitions ReadyMadeEffects(Options& options)
{
    return {
        OneOf("outcome", OUTCOME_CHOICES, options.settings, &Settings::GetOutcomesType,
              &Settings::SetOutcomesType, "outcome that the effect sizes are of"),
        ReadyMadeEffect(options),
    };
}

OptionDefinitions EffectsOf(Options& options)
{
    switch (options.command) {
    case Command::BINARY:
        return BinaryEffect(options.settings);
    case Command::CONTINUOUS:
        return ContinuousEffect(options.settings);
    case Command::EFFECTS:
        return ReadyMadeEffects(options);
    case Command::RATES:
    case Command::PROPORTION:
    case Command::RATE:
    case Command::CORRELATION:
    case Command::MEAN:
        return OutcomeEffects(options);
    case Command::REGRESSION:
        break;
    }
    return {};
}

void ResolveReadyMadeEffect(Options& options)
{
    if (!options.readyMadeEffect)
        return;
    try {
        SetMeasure(options.settings, *options.readyMadeEffect);
    } catch (const UnusableInput& problem) {
        throw UnusableInput(fmt::format("--effect with --outcome {}: {}",
                                        NameOf(OUTCOME_CHOICES, options.settings.GetOutcomesType()),
                                        problem.what()));
    }
}

/// Only a model that pools tables has counts to correct.
void CheckPooledZeroCells(const Options& options)
{
    if (options.given.contains("pooled-zero-cells") && !PoolsTables(options.settings))
        throw UnusableInput(
            "--pooled-zero-cells needs --weights mantel-haenszel and --model fixed, which pool "
            "the counts of the tables.");
}

} // namespace

OptionGroup EffectSizeOptions(Options& options)
{
    return {.heading = "Effect size", .options = EffectsOf(options), .complete = [&options] {
                ResolveReadyMadeEffect(options);
                CheckPooledZeroCells(options);
                CheckOutcomeOptions(options);
            }};
}

} // namespace host
