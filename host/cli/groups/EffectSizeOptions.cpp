#include "host/cli/Choices.h"
#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"
#include "host/cli/OutcomeOptions.h"
#include "host/cli/RawOutcomes.h"
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

std::vector<std::string> NamesOfReadyMade()
{
    std::vector<std::string> names = ListOfNames(CONTINUOUS_MEASURES);
    for (const BinaryMeasure& measure : BINARY_MEASURES)
        names.emplace_back(measure.name);
    return names;
}

/// The measure of ready-made effect sizes. The outcome, which may be given later, says which are allowed.
OptionDefinition ReadyMadeEffect(Options& options)
{
    return {.name = "effect",
            .argument = "NAME",
            .help = fmt::format("what the effect sizes are (default the first):\ncontinuous outcome: {}\n"
                                "binary outcome: {}\nabbreviations{}{}",
                                NamesOf(CONTINUOUS_MEASURES), NamesOf(BINARY_MEASURES),
                                AbbreviationsOf(CONTINUOUS_MEASURES), AbbreviationsOf(BINARY_MEASURES)),
            .choices = NamesOfReadyMade(),
            .store = [&options](const std::string& text) { options.readyMadeEffect = text; },
            .value = [&options] { return nlohmann::ordered_json(MeasureName(options.settings)); }};
}

OptionDefinition Label(Options& options)
{
    return {.name = "label",
            .argument = "TEXT",
            .help = "what reports and pictures call the effect sizes, in place of the name by --effect",
            .store = [&options](const std::string& text) { options.label = text; },
            .value =
                [&options] {
                    return options.label ? nlohmann::ordered_json(*options.label) : nlohmann::ordered_json();
                }};
}

OptionDefinitions ReadyMadeEffects(Options& options)
{
    MAInputSettings& input = options.settings;
    return {
        OneOf("outcome", OUTCOME_CHOICES, options.settings, &Settings::GetOutcomesType,
              &Settings::SetOutcomesType, "outcome that the effect sizes are of"),
        ReadyMadeEffect(options),
        Flag("ratio", input, &MAInputSettings::GetInputIsRatio, &MAInputSettings::SetInputIsRatio,
             "effect sizes and confidence limits are ratios, of which the logarithms are analysed"),
        Label(options),
    };
}

/// Ratios are results of a binary outcome, unless the outcome is given. Without a measure they are no odds
/// ratios, but ratios of any kind.
void ResolveRatio(Options& options)
{
    if (!options.settings.GetInputIsRatio() || options.given.contains("outcome"))
        return;
    options.settings.SetOutcomesType(MAConst::OUTCOME_BINARY);
    if (!options.label && !options.readyMadeEffect)
        options.label = "ratio";
}

void CheckReadyMadeEffect(const Options& options)
{
    if (options.settings.GetInputIsRatio() && !MeasureOf(options.settings).isRatio)
        throw UnusableInput(fmt::format("--ratio needs an --effect that is a ratio: {} is none.",
                                        MeasureName(options.settings)));
    if (options.label && Trimmed(*options.label).empty())
        throw UnusableInput("--label: the text is empty.");
}

/// The end of a refusal: an effect size that only the other outcome has points to it.
std::string OutcomeThatHas(std::string_view effect)
{
    if (HasName(BINARY_MEASURES, effect))
        return " It is one of --outcome binary.";
    return HasName(CONTINUOUS_MEASURES, effect) ? " It is one of --outcome continuous." : "";
}

void ResolveReadyMadeEffect(Options& options)
{
    if (!options.readyMadeEffect)
        return;
    try {
        SetMeasure(options.settings, *options.readyMadeEffect);
    } catch (const UnusableInput& problem) {
        throw UnusableInput(fmt::format("--effect with --outcome {}: {}{}",
                                        NameOf(OUTCOME_CHOICES, options.settings.GetOutcomesType()),
                                        problem.what(), OutcomeThatHas(*options.readyMadeEffect)));
    }
}

/// The name that stands for want of another must not pass for what somebody said.
void NoteDefaultName(Options& options)
{
    if (options.command == Command::EFFECTS && !options.label && !options.readyMadeEffect)
        options.notes.push_back(fmt::format("{} is the default name of ready-made effect sizes: --effect or "
                                            "--label says what they are.",
                                            Capitalised(MeasureOf(options.settings).AnalysisName())));
}

} // namespace

OptionDefinitions EffectsOfData(Options& options, Command data)
{
    switch (data) {
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
        return OutcomeEffects(options, data);
    case Command::REGRESSION:
    case Command::BATCH:
        break;
    }
    return {};
}

OptionGroup EffectSizeOptions(Options& options)
{
    return {.heading = "Effect size", .options = EffectsOf(options), .complete = [&options] {
                ResolveRatio(options);
                ResolveReadyMadeEffect(options);
                CheckReadyMadeEffect(options);
                NoteDefaultName(options);
            }};
}

} // namespace host
