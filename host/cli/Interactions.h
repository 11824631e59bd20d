#pragma once

#include "host/cli/Options.h"

#include <string>
#include <utility>
#include <vector>

namespace host {

/// The two columns of each interaction. The names may hold colons themselves, as long as only one of the
/// colons separates two columns that are covariates or factors. Throws UnusableInput.
std::vector<std::pair<std::string, std::string>> InteractionsOf(const RegressionOptions& options);

} // namespace host
