#include "host/cli/OptionDefinition.h"

#include "host/cli/AnalysisOptions.h"
#include "host/cli/OptionKinds.h"
#include "host/cli/Presets.h"
#include "host/cli/RandomEffectsOptions.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Settings = MAModelSettings;
using Definitions = std::vector<OptionDefinition>;
using Json = nlohmann::ordered_json;

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
    case Command::REGRESSION:
        return RegressionColumns(options);
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
        OneOf("pooled-zero-cells", POOLED_ZERO_CELL_CHOICES, settings, &Settings::GetPooledZeroCells,
              &Settings::SetPooledZeroCells, "correction of the counts that --weights mantel-haenszel pools"),
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
    case Command::REGRESSION:
        break;
    }
    return {};
}

Definitions ModelOf(Settings& settings)
{
    return {
        OneOf("model", MODEL_CHOICES, settings, &Settings::GetModelType, &Settings::SetModelType,
              "pooling model"),
        OneOf("tau2", TAU2_CHOICES, settings, &Settings::GetEstTauType, &Settings::SetEstTauType,
              "between-study variance estimator"),
        OneOf("knapp-hartung", KNAPP_HARTUNG_CHOICES, settings, &Settings::GetKnapHartAdjustType,
              &Settings::SetKnapHartAdjustType, "adjustment of the random model"),
        Number("level", BETWEEN_0_AND_1, settings, &Settings::GetCILevel, &Settings::SetCILevel,
               "confidence level, a fraction"),
    };
}

Definitions PoolingOf(Settings& settings)
{
    return {
        OneOf("weights", WEIGHT_CHOICES, settings, &Settings::GetWeightType, &Settings::SetWeightType,
              "study weights"),
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

} // namespace

std::vector<OptionDefinition> DefineOptions(Options& options)
{
    Definitions all;
    AppendGroup(all, "Columns", ColumnsOf(options));
    AppendGroup(all, "Columns",
                {Column("study", options.study, "labels of the studies (default: record numbers from 1)")});
    AppendGroup(all, "Effect size", EffectsOf(options));
    if (options.command == Command::REGRESSION)
        AppendGroup(all, "Predictors", RegressionTerms(options.regression));
    AppendGroup(all, "Model", {PresetOption(options)});
    AppendGroup(all, "Model", ModelOf(options.settings));
    AppendGroup(all, "Model",
                options.command == Command::REGRESSION ? RegressionTests(options.regression)
                                                       : PoolingOf(options.settings));
    AppendGroup(all, "Random-effects model", BetweenStudyVariance(options.settings));
    if (options.command != Command::REGRESSION)
        AppendGroup(all, "Random-effects model", Predictions(options.settings));
    AppendGroup(all, "Iteration", IterationOf(options.settings));
    if (options.command != Command::REGRESSION)
        AppendAnalysisOptions(all, options);
    return all;
}

} // namespace host
