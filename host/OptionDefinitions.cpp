#include "host/OptionDefinitions.h"

#include "host/Choices.h"
#include "host/TextParsing.h"

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Settings = MAModelSettings;
using Definitions = std::vector<OptionDefinition>;
using Json = nlohmann::ordered_json;

/// Which numbers an option takes: a test, and the test in words.
struct Domain
{
    bool (*contains)(double);
    const char* words;
};

constexpr Domain ANY_NUMBER = {[](double) { return true; }, "a number"};
constexpr Domain POSITIVE = {[](double x) { return x > 0; }, "above 0"};
constexpr Domain NOT_NEGATIVE = {[](double x) { return x >= 0; }, "0 or above"};
constexpr Domain BETWEEN_0_AND_1 = {[](double x) { return x > 0 && x < 1; }, "between 0 and 1"};

template <class Value>
Value RequireInside(const Domain& domain, Value value)
{
    if (!domain.contains(value))
        throw UnusableInput(fmt::format("{} is not {}.", value, domain.words));
    return value;
}

OptionDefinition Column(const char* name, ColumnName& target, const char* help)
{
    return {.name = name,
            .argument = "COLUMN",
            .help = help,
            .store = [&target](const std::string& text) { target = text; },
            .value = [&target] { return target ? Json(*target) : Json(); }};
}

OptionDefinition Required(OptionDefinition option)
{
    option.need = OptionDefinition::Need::REQUIRED;
    return option;
}

OptionDefinition ThisOrNext(OptionDefinition option)
{
    option.need = OptionDefinition::Need::THIS_OR_NEXT;
    return option;
}

template <class Value, std::size_t N>
OptionDefinition OneOf(const char* name, const std::array<Choice<Value>, N>& choices, Settings& settings,
                       Value (Settings::*get)() const, void (Settings::*set)(Value), const char* help)
{
    const std::string preset = NameOf(choices, (settings.*get)());
    return {.name = name,
            .argument = "NAME",
            .help = fmt::format("{}: {} (default {})", help, NamesOf(choices), preset),
            .store = [&settings, &choices,
                      set](const std::string& text) { (settings.*set)(ValueOf(choices, text)); },
            .value = [&settings, &choices, get] { return Json(NameOf(choices, (settings.*get)())); }};
}

OptionDefinition Number(const char* name, const Domain& domain, Settings& settings,
                        double (Settings::*get)() const, void (Settings::*set)(double), const char* help)
{
    return {.name = name,
            .argument = "NUMBER",
            .help = fmt::format("{} (default {})", help, (settings.*get)()),
            .store =
                [&settings, &domain, set](const std::string& text) {
                    (settings.*set)(RequireInside(domain, ParseNumber(text)));
                },
            .value = [&settings, get] { return Json((settings.*get)()); }};
}

OptionDefinition Count(const char* name, Settings& settings, int (Settings::*get)() const,
                       void (Settings::*set)(int), const char* help)
{
    return {.name = name,
            .argument = "COUNT",
            .help = fmt::format("{} (default {})", help, (settings.*get)()),
            .store =
                [&settings, set](const std::string& text) {
                    (settings.*set)(RequireInside(NOT_NEGATIVE, ParseWholeNumber(text)));
                },
            .value = [&settings, get] { return Json((settings.*get)()); }};
}

OptionDefinition Flag(const char* name, Settings& settings, bool (Settings::*get)() const,
                      void (Settings::*set)(bool), const char* help)
{
    return {.name = name,
            .help = help,
            .store = [&settings, set](const std::string&) { (settings.*set)(true); },
            .value = [&settings, get] { return Json((settings.*get)()); }};
}

/// The kinds of ready-made effect sizes: the outcome, which may be given later, says which are allowed.
OptionDefinition ReadyMadeEffect(Options& options)
{
    return {.name = "effect",
            .argument = "NAME",
            .help = fmt::format("what the effect sizes are (default the first):\ncontinuous outcome: {}\n"
                                "binary outcome: {}",
                                NamesOf(CONTINUOUS_EFFECT_CHOICES), NamesOf(BINARY_EFFECT_CHOICES)),
            .store = [&options](const std::string& text) { options.readyMadeEffect = text; },
            .value =
                [&settings = options.settings] {
                    return Json(settings.GetOutcomesType() == MAConst::OUTCOME_BINARY
                                    ? NameOf(BINARY_EFFECT_CHOICES, settings.GetBinaryEstType())
                                    : NameOf(CONTINUOUS_EFFECT_CHOICES, settings.GetContinousEstType()));
                }};
}

Definitions BinaryColumns(Options& options)
{
    return {
        Required(Column("treatment-events", options.treatmentEvents, "events in the treatment group")),
        Required(Column("treatment-nonevents", options.treatmentNonEvents, "non-events in it")),
        Required(Column("control-events", options.controlEvents, "events in the control group")),
        Required(Column("control-nonevents", options.controlNonEvents, "non-events in it")),
    };
}

Definitions ContinuousColumns(Options& options)
{
    return {
        Required(Column("treatment-n", options.treatmentSize, "size of the treatment group")),
        Required(Column("treatment-mean", options.treatmentMean, "its mean")),
        ThisOrNext(Column("treatment-sd", options.treatmentStdDev, "its standard deviation, or")),
        Column("treatment-variance", options.treatmentVariance, "its variance"),
        Required(Column("control-n", options.controlSize, "size of the control group")),
        Required(Column("control-mean", options.controlMean, "its mean")),
        ThisOrNext(Column("control-sd", options.controlStdDev, "its standard deviation, or")),
        Column("control-variance", options.controlVariance, "its variance"),
    };
}

Definitions EffectsColumns(Options& options)
{
    return {
        Required(Column("effect-size", options.effectSize, "effect sizes (of ratios: their logarithms)")),
        ThisOrNext(Column("variance", options.variance, "their variances, or")),
        Column("std-error", options.stdError, "their standard errors"),
    };
}

Definitions ColumnsOf(Options& options)
{
    switch (options.command) {
    case Command::BINARY:
        return BinaryColumns(options);
    case Command::CONTINUOUS:
        return ContinuousColumns(options);
    case Command::EFFECTS:
        return EffectsColumns(options);
    }
    return {};
}

Definitions BinaryEffect(Settings& settings)
{
    return {
        OneOf("effect", BINARY_EFFECT_CHOICES, settings, &Settings::GetBinaryEstType,
              &Settings::SetBinaryEstType, "effect size"),
        OneOf("zero-cells", ZERO_CELL_CHOICES, settings, &Settings::GetBinZeroAdjType,
              &Settings::SetBinZeroAdjType, "which tables receive the zero-count constant in all cells"),
        Number("zero-delta", NOT_NEGATIVE, settings, &Settings::GetZeroCountDelta,
               &Settings::SetZeroCountDelta, "zero-count constant"),
        Flag("drop-double-zero", settings, &Settings::GetDropBinZero, &Settings::SetDropBinZero,
             "drop tables without events, or without non-events, in both groups"),
    };
}

Definitions ContinuousEffect(Settings& settings)
{
    return {
        OneOf("effect", CONTINUOUS_EFFECT_CHOICES, settings, &Settings::GetContinousEstType,
              &Settings::SetContinousEstType, "effect size"),
        Flag("equal-variances", settings, &Settings::GetVarEqualAssumption, &Settings::SetVarEqualAssumption,
             "mean difference: assume equal variances in both groups"),
        Flag("variance-adjustment", settings, &Settings::GetVarianceAdjustment,
             &Settings::SetVarianceAdjustment, "Cohen's d, Hedges' g: adjusted variance"),
        OneOf("glass-group", GLASS_GROUP_CHOICES, settings, &Settings::GetGlassDsVarDependentGroup,
              &Settings::SetGlassDsVarDependentGroup, "whose standard deviation divides in Glass's delta"),
    };
}

Definitions ReadyMadeEffects(Options& options)
{
    return {
        OneOf("outcome", OUTCOME_CHOICES, options.settings, &Settings::GetOutcomesType,
              &Settings::SetOutcomesType, "outcome that the effect sizes are of"),
        ReadyMadeEffect(options),
    };
}

Definitions EffectsOf(Options& options)
{
    switch (options.command) {
    case Command::BINARY:
        return BinaryEffect(options.settings);
    case Command::CONTINUOUS:
        return ContinuousEffect(options.settings);
    case Command::EFFECTS:
        return ReadyMadeEffects(options);
    }
    return {};
}

Definitions ModelOf(Settings& settings)
{
    return {
        OneOf("model", MODEL_CHOICES, settings, &Settings::GetModelType, &Settings::SetModelType,
              "pooling model"),
        OneOf("weights", WEIGHT_CHOICES, settings, &Settings::GetWeightType, &Settings::SetWeightType,
              "study weights"),
        OneOf("tau2", TAU2_CHOICES, settings, &Settings::GetEstTauType, &Settings::SetEstTauType,
              "between-study variance estimator"),
        OneOf("knapp-hartung", KNAPP_HARTUNG_CHOICES, settings, &Settings::GetKnapHartAdjustType,
              &Settings::SetKnapHartAdjustType, "adjustment of the random model"),
        Number("level", BETWEEN_0_AND_1, settings, &Settings::GetCILevel, &Settings::SetCILevel,
               "confidence level, a fraction"),
        Number("null", ANY_NUMBER, settings, &Settings::GetNullHypothesis, &Settings::SetNullHypothesis,
               "effect under the null hypothesis, for the fixed model"),
    };
}

Definitions IterationOf(Settings& settings)
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

void AppendGroup(Definitions& all, const char* group, Definitions options)
{
    for (OptionDefinition& option : options) {
        option.group = group;
        all.push_back(std::move(option));
    }
}

} // namespace

std::vector<OptionDefinition> DefineOptions(Options& options)
{
    Definitions all;
    AppendGroup(all, "Columns", ColumnsOf(options));
    AppendGroup(all, "Columns",
                {Column("study", options.study, "labels of the studies (default: record numbers from 1)")});
    AppendGroup(all, "Effect size", EffectsOf(options));
    AppendGroup(all, "Model", ModelOf(options.settings));
    AppendGroup(all, "Iteration", IterationOf(options.settings));
    return all;
}

} // namespace host
