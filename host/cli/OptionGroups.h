#pragma once

#include "host/cli/OptionDefinition.h"
#include "host/cli/Options.h"

#include <functional>

namespace host {

/// The options of a command that stand under one heading of its help. A command that lacks the group has
/// none.
struct OptionGroup
{
    const char* heading = "";
    OptionDefinitions options = {};

    /// Completes the stored values, and refuses those that have no meaning together with other options.
    /// Throws UnusableInput. Called when all options are stored and the preset is applied. Options without
    /// effect are refused by the table in host/cli/OptionRules.cpp.
    std::function<void()> complete = {};
};

/// Makes a group for the command of `options`, to which the group refers. Each maker is in the file of its
/// name in host/cli/groups.
using OptionGroupMaker = OptionGroup(Options& options);

OptionGroupMaker FileOptions, ColumnOptions, EffectSizeOptions, PredictorOptions, HypothesisOptions,
    RobustTestOptions, ModelOptions, RandomEffectsOptions, IterationOptions, GroupAndOrderOptions,
    SensitivityOptions, SmallStudyOptions, PlotOptions, FigureOptions, CurveOptions;

/// The groups in the order of the help.
inline constexpr OptionGroupMaker* OPTION_GROUPS[] = {
    FileOptions,        ColumnOptions,     EffectSizeOptions,    PredictorOptions, HypothesisOptions,
    RobustTestOptions,  ModelOptions,      RandomEffectsOptions, IterationOptions, GroupAndOrderOptions,
    SensitivityOptions, SmallStudyOptions, PlotOptions,          FigureOptions,    CurveOptions};

/// The options that the command of `options` has, in the order of the help. They refer to `options`, which
/// must outlive them.
OptionDefinitions DefineOptions(Options& options);

/// Completes the options with their preset, and checks them all. Throws UnusableInput.
void CompleteOptions(Options& options);

} // namespace host
