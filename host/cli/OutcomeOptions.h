#pragma once

#include "host/cli/OptionDefinition.h"
#include "host/cli/Options.h"

namespace host {

// The options of the commands of MAOutcomeModel: rates of two groups, and the outcomes of one group.

/// The columns of the data of a command of these.
OptionDefinitions OutcomeColumns(Options& options, Command data);

/// The measure of these data, and what a measure of counts does with zeros.
OptionDefinitions OutcomeEffects(Options& options, Command data);

/// Refuses a value on the natural scale that the measure of the analysis does not have. Throws UnusableInput.
void RequireNatural(const char* option, const MA_NAMESPACE::MAModelSettings& settings, double value);

// Shared with 2x2 tables.

/// --zero-cells and --zero-delta; `receivers` says who receives the constant.
OptionDefinitions ZeroCellOptions(MA_NAMESPACE::MAModelSettings& settings, const char* receivers);
/// --pooled-zero-cells
OptionDefinition PooledZeroCellOption(MA_NAMESPACE::MAModelSettings& settings);

} // namespace host
