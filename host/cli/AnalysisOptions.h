#pragma once

#include "host/cli/OptionDefinition.h"

#include <vector>

namespace host {

/// Appends the options of the analyses beside the overall model, which every command that pools has:
/// subgroups, cumulative order, contrasts, small-study effects and plots.
void AppendAnalysisOptions(std::vector<OptionDefinition>& all, Options& options);

} // namespace host
